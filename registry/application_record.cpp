#include "registry/application_record.h"

#include "foundation/file_formats.h"
#include "foundation/registry_key.h"
#include "foundation/text.h"
#include "registry/registry_layout.h"

#include <utility>

namespace kestraboot
{
namespace
{

constexpr const wchar_t* kFileFormats = L"File Formats";
constexpr const wchar_t* kPreferences = L"Preferences";
constexpr const wchar_t* kDefaultFlag = L"DefaultFlag";
constexpr const wchar_t* kAutoLaunch = L"AutoLaunchOnDeviceConnect";

void ReadText(RegistryKey& key, const wchar_t* valueName, std::wstring& member)
{
    if (const wchar_t* const text = key.QueryString(valueName)) {
        member = text;
    }
}

/// False when the key cannot be opened.
bool ReadTexts(const std::wstring& keyPath, appInfo_tag& record)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(keyPath, KEY_READ);
    if (!key.IsOpen()) {
        return false;
    }
    ReadText(key, L"Name", record.Name);
    ReadText(key, L"ProxyPath", record.ProxyPath);
    ReadText(key, L"Desc", record.Desc);
    ReadText(key, L"CmdLine", record.CmdLine);
    ReadText(key, L"Icon", record.Icon);
    return true;
}

std::vector<formatInfo_tag> ReadFileFormats(const std::wstring& formatsPath)
{
    std::vector<formatInfo_tag> formats;
    for (const wchar_t* const mediaType : {L"Image", L"Audio", L"Video"}) {
        RegistryKey key = RegistryKey::OpenLocalMachine(formatsPath, KEY_READ);
        if (const wchar_t* const extensions = key.QueryString(mediaType)) {
            AppendFormats(formats, extensions, mediaType);
        }
    }
    return formats;
}

void CreateUserPreferences(const std::wstring& prefsPath)
{
    // Removes every leading character that occurs in the root's path, not the path itself. A
    // product whose name begins with such letters loses them too, and never gets its key. This is
    // documented behaviour (application_info.h): it decides whose DefaultFlag counts.
    const std::size_t rest = prefsPath.find_first_not_of(std::wstring(kCorvaneRoot) + L'\\');
    if (rest == std::wstring::npos) {
        return;
    }
    {
        RegistryKey root = RegistryKey::OpenCurrentUser(kCorvaneRoot, KEY_WRITE);
        const UniqueRegistryHandle created =
            root.CreateSubkeyWithString(prefsPath.substr(rest), nullptr, nullptr);
        if (!created) {
            return;
        }
    }
    RegistryKey prefs = RegistryKey::OpenCurrentUser(prefsPath, KEY_WRITE);
    prefs.SetDword(kDefaultFlag, 0);
}

std::uint32_t ReadDefaultFlag(const std::wstring& prefsPath)
{
    {
        RegistryKey user = RegistryKey::OpenCurrentUser(prefsPath, KEY_READ);
        if (user.IsOpen()) {
            const std::int32_t flag = user.QueryDword(kDefaultFlag);
            return flag != -1 ? static_cast<std::uint32_t>(flag) : 0;
        }
        if (user.Status() != ERROR_FILE_NOT_FOUND) {
            return 0; // a key that exists hides the machine's value, and must not be overwritten
        }
    }
    CreateUserPreferences(prefsPath);
    RegistryKey machine = RegistryKey::OpenLocalMachine(prefsPath, KEY_READ);
    const std::int32_t flag = machine.QueryDword(kDefaultFlag);
    return flag != -1 ? static_cast<std::uint32_t>(flag) : 0;
}

} // namespace

std::wstring PreferencesPath(std::wstring_view keyPath)
{
    return JoinPath(keyPath, kPreferences);
}

void ReadApplicationRecord(std::wstring keyPath, appInfo_tag& record)
{
    const bool opened = ReadTexts(keyPath, record);
    std::wstring below = JoinPath(keyPath, kFileFormats);
    record.FileFormats = ReadFileFormats(below);
    below.replace(keyPath.size() + 1, std::wstring::npos, kPreferences);
    record.DefaultFlag = ReadDefaultFlag(below);
    if (opened) {
        record.KeyPath = std::move(keyPath);
    }
}

bool IsAutoLaunchAllowed(const std::wstring& keyPath)
{
    const std::wstring prefsPath = PreferencesPath(keyPath);
    std::int32_t kept = RegistryKey::OpenCurrentUser(prefsPath, KEY_READ).QueryDword(kAutoLaunch);
    if (kept == -1) {
        kept = RegistryKey::OpenLocalMachine(prefsPath, KEY_READ).QueryDword(kAutoLaunch);
    }
    return kept != 1;
}

void WriteDefaultFlag(const std::wstring& prefsPath, std::uint32_t value)
{
    RegistryKey::OpenCurrentUser(prefsPath, KEY_WRITE).SetDword(kDefaultFlag, value);
    RegistryKey::OpenLocalMachine(prefsPath, KEY_WRITE).SetDword(kDefaultFlag, value);
}

} // namespace kestraboot
