// The one place where a compatible application is started for a device.
#include "foundation/handles.h"
#include "kestraboot/command_handler.h"
#include "launcher/start_line.h"
#include "legacy/proxy_launch.h"
#include "service/console_session.h"
#include "service/windows_version.h"

#include <cstdint>
#include <process.h>

using namespace kestraboot;

namespace
{

bool InConsoleSession() noexcept
{
    return IsProcessInActiveConsoleSession(::GetCurrentProcessId());
}

/// With a device, both workstation releases that switch users require the console session; without
/// one, Windows XP alone.
bool MayLaunch(bool withDevice) noexcept
{
    const WindowsVersionClass version = GetWindowsVersionClass();
    const bool gated =
        version == WindowsVersionClass::Xp || (withDevice && version == WindowsVersionClass::Vista);
    return !gated || InConsoleSession();
}

/// Ends a start without waiting: whether it worked is not checked, and its handle is closed at
/// once.
void Forget(std::intptr_t started) noexcept
{
    if (started != -1) {
        const UniqueKernelHandle process(reinterpret_cast<HANDLE>(started));
    }
}

void Start(const wchar_t* appPath, const StartLine& line, bool withDevice) noexcept
{
    constexpr const wchar_t* kEnd = nullptr;
    if (*appPath == L'\0') {
        return; // no file has this name, and a C runtime may end the process that asks for it
    }
    if (withDevice) {
        Forget(::_wspawnlp(_P_NOWAIT, appPath, line.Argument(0), line.Argument(1), line.Argument(2),
                           line.Argument(3), line.Argument(4), line.Argument(5), kEnd));
    } else {
        // Without an identifier the type is left out too: the line then names no device.
        Forget(::_wspawnlp(_P_NOWAIT, appPath, line.Argument(0), line.Argument(1), line.Argument(2),
                           line.Argument(3), kEnd));
    }
}

} // namespace

void CKestraBootCommandHandler::LaunchKestra(std::wstring& appPath, std::wstring& mode,
                                             std::wstring& deviceType, std::wstring& deviceId)
{
    if (mode.empty()) {
        ::OutputDebugStringW(L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>");
        return;
    }
    StartLine line;
    line.Add({QuoteFor(appPath), appPath, QuoteFor(appPath)});
    line.Add({L"module=kestrafetch"});
    line.Add({L"params"}); // an argument of its own, without a value
    line.Add({L"mode=", mode});
    if (!deviceId.empty()) {
        line.Add({L"devType=", deviceType});
        line.Add({L"priDevId=", QuoteFor(deviceId), deviceId, QuoteFor(deviceId)});
    }

    if (!MayLaunch(!deviceId.empty())) {
        ::OutputDebugStringW(L"<KestraBoot><!!! Unable to launch Kestra.>");
        return;
    }
    Start(appPath.c_str(), line, !deviceId.empty());
    ::OutputDebugStringW(line.Join());
}

void CKestraBootCommandHandler::LaunchVel3Proxy(std::wstring& proxyPath, std::wstring& deviceType,
                                                std::wstring& deviceId)
{
    LaunchOrganiserProxy(proxyPath, deviceType, deviceId);
}
