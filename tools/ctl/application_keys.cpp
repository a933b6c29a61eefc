#include "tools/ctl/application_keys.h"

#include "tools/ctl/files.h"
#include "tools/ctl/registry_key.h"
#include "tools/ctl/registry_names.h"

#include <deque>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kLongestSearchedName = 127; // a longer one ends the library's search of its key
constexpr std::uint32_t kDefaultDepth = 4;
constexpr std::uint32_t kGreatestDepth = 0x7FFFFFFF; // above, it is negative for the library

struct Place {
    std::wstring path;
    bool belowAnother;
    bool behindLongName;
};

bool Exists(const std::optional<std::wstring>& path)
{
    return path && FileExists(*path);
}

std::optional<ApplicationKey> ReadApplicationKey(const std::wstring& path, REGSAM view)
{
    const RegistryKey key = OpenUnlessDenied(HKEY_LOCAL_MACHINE, path, KEY_READ | view);
    if (!key) {
        return std::nullopt;
    }
    const std::wstring preferences = path + L"\\Preferences";
    constexpr const wchar_t* kAutoLaunch = L"AutoLaunchOnDeviceConnect";
    ApplicationKey read;
    read.path = path;
    read.name = key.Text(L"Name");
    read.proxyPath = key.Text(L"ProxyPath");
    read.commandPath = key.Text(L"CmdLine");
    read.proxyExists = Exists(read.proxyPath);
    read.commandExists = Exists(read.commandPath);
    const RegistryKey ofUser(HKEY_CURRENT_USER, preferences);
    read.userHasPreferences = static_cast<bool>(ofUser);
    read.autoLaunchOfUser = ofUser.Number(kAutoLaunch);
    read.autoLaunchOfMachine =
        RegistryKey(HKEY_LOCAL_MACHINE, preferences, KEY_READ | view).Number(kAutoLaunch);
    read.sniffDepth = RegistryKey(HKEY_CURRENT_USER, path).Number(L"SniffDepth");
    if (read.sniffDepth > kGreatestDepth) {
        read.sniffDepth = kDefaultDepth;
    }
    return read;
}

std::vector<ApplicationKey> FindIn(REGSAM view)
{
    std::vector<ApplicationKey> found;
    std::deque<Place> pending = {{kCorvaneRoot, false, false}};
    while (!pending.empty()) {
        const Place parent = std::move(pending.front());
        pending.pop_front();
        bool behindLongName = parent.behindLongName;
        for (const std::wstring& name :
             OpenUnlessDenied(HKEY_LOCAL_MACHINE, parent.path, KEY_READ | view).Subkeys()) {
            behindLongName = behindLongName || name.size() > kLongestSearchedName;
            Place child = {parent.path + L'\\' + name, parent.belowAnother, behindLongName};
            if (::_wcsicmp(name.c_str(), kApplicationKeyName) == 0) {
                std::optional<ApplicationKey> key = ReadApplicationKey(child.path, view);
                if (!key) {
                    continue;
                }
                key->nameInOtherCase = name != kApplicationKeyName;
                key->belowAnother = child.belowAnother;
                key->behindLongName = child.behindLongName;
                child.belowAnother = child.belowAnother || !key->nameInOtherCase;
                found.push_back(std::move(*key));
            }
            pending.push_back(std::move(child));
        }
    }
    return found;
}

} // namespace

std::vector<ApplicationKey> FindApplicationKeys()
{
    return FindIn(0);
}

std::vector<ApplicationKey> FindApplicationKeysOf32Bit()
{
    return FindIn(KEY_WOW64_32KEY);
}

} // namespace kestraboot::tools
