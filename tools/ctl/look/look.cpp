#include "tools/ctl/look/look.h"

#include "tools/common/handle.h"
#include "tools/common/windows_error.h"
#include "tools/ctl/application_keys.h"
#include "tools/ctl/check/check.h"
#include "tools/ctl/files.h"
#include "tools/ctl/gather.h"
#include "tools/ctl/registry_key.h"
#include "tools/ctl/registry_names.h"

#include <windows.h>
#include <map>
#include <stdexcept>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kSwitchedOff =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";

std::wstring PathOfModule(const wchar_t* name)
{
    const HMODULE module = ::GetModuleHandleW(name);
    std::wstring path(32'768, L'\0'); // longer than any
    path.resize(module == nullptr
                    ? 0
                    : ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    if (path.empty()) {
        throw std::runtime_error("cannot get the path of this program or its library: " +
                                 WindowsErrorText(::GetLastError()));
    }
    return path;
}

std::optional<bool> IsDebugOutputRead()
{
    const Handle turn(::OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_BUFFER_READY"));
    if (turn || ::GetLastError() == ERROR_ACCESS_DENIED) { // by a process with more privileges
        return true;
    }
    return ::GetLastError() == ERROR_FILE_NOT_FOUND ? std::optional(false) : std::nullopt;
}

/// Windows' list of start-up programs: an odd first byte switches an entry off.
bool IsSwitchedOff()
{
    const auto state = RegistryKey(HKEY_LOCAL_MACHINE, kSwitchedOff).Find(kRunValue);
    return state && !state->bytes.empty() && state->bytes[0] % 2 == 1;
}

} // namespace

WindowsVersion LookAtWindows()
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    WindowsVersion windows;
    windows.known = ::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)) != FALSE &&
                    version.dwPlatformId == VER_PLATFORM_WIN32_NT;
    if (windows.known) {
        windows.major = version.dwMajorVersion;
        windows.minor = version.dwMinorVersion;
        windows.build = version.dwBuildNumber;
        windows.workstation = version.wProductType == VER_NT_WORKSTATION;
    }
    return windows;
}

Facts Look()
{
    Facts facts;
    facts.report = Gather(); // on a copy of the keys, which is removed again
    facts.windows = LookAtWindows();
    facts.account = LookAtAccount();
    facts.keysOf32Bit = FindApplicationKeysOf32Bit();
    facts.userHasRoot = static_cast<bool>(RegistryKey(HKEY_CURRENT_USER, kCorvaneRoot));
    facts.autoRunSwitchedOff = IsSwitchedOff();
    std::vector<std::wstring> proxies;
    std::map<std::wstring, FileVersion> versions; // of applications that share a program
    const auto versionOf = [&](const std::wstring& file) {
        const auto [known, isNew] = versions.insert({file, std::nullopt});
        if (isNew) {
            known->second = VersionOf(file);
        }
        return known->second;
    };
    for (const ListedApplication& application : facts.report.applications) {
        proxies.push_back(application.info.ProxyPath);
        facts.versions.push_back(
            {versionOf(application.info.CmdLine), versionOf(application.info.ProxyPath)});
    }
    if (facts.report.organiser) {
        facts.organiserPrograms = {FileExists(facts.report.organiser->ProxyPath),
                                   FileExists(facts.report.organiser->CmdLine)};
    }
    facts.control = LookAtControl(proxies);
    const std::wstring program = BootProgramToLookBeside(facts.control, facts.report);
    if (!program.empty()) {
        facts.boot = LookBeside(program);
    }
    const std::wstring own = PathOfModule(nullptr);
    facts.imaging = LookAtImaging(program.empty() ? own : program);
    facts.debugOutputIsRead = IsDebugOutputRead();
    facts.toolVersion = VersionOf(own);
    facts.libraryVersion = VersionOf(PathOfModule(L"kestraboot.dll"));
    return facts;
}

} // namespace kestraboot::tools
