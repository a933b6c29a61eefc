// The one place where a compatible application is started for a device.
#include "foundation/handles.h"
#include "foundation/text.h"
#include "kestraboot/command_handler.h"
#include "legacy/proxy_launch.h"
#include "service/console_session.h"
#include "service/windows_version.h"

#include <cstdint>
#include <process.h>

using namespace kestraboot;

namespace
{

constexpr const wchar_t* kModule = L"module=kestrafetch";
constexpr const wchar_t* kParams = L"params"; // an argument of its own, without a value

bool InConsoleSession() noexcept
{
    return IsProcessInActiveConsoleSession(::GetCurrentProcessId());
}

/// With a device, both workstation releases that switch users ask for the console session; without one,
/// Windows XP alone.
bool MayLaunch(bool withDevice) noexcept
{
    const WindowsVersionClass version = GetWindowsVersionClass();
    const bool gated =
        version == WindowsVersionClass::Xp || (withDevice && version == WindowsVersionClass::Vista);
    return !gated || InConsoleSession();
}

/// A start without waiting. Whether it worked is not looked at; its handle is closed at once.
void Forget(std::intptr_t started) noexcept
{
    if (started != -1) {
        const UniqueKernelHandle process(reinterpret_cast<HANDLE>(started));
    }
}

} // namespace

void CKestraBootCommandHandler::LaunchKestra(std::wstring& appPath, std::wstring& mode,
                                             std::wstring& deviceType, std::wstring& deviceId)
{
    const std::wstring modeArgument = L"mode=" + mode;
    const std::wstring deviceTypeArgument = L"devType=" + deviceType;
    if (mode.empty()) {
        ::OutputDebugStringW(L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>");
        return;
    }
    const std::wstring quotedPath = QuoteUnlessQuoted(appPath);
    std::wstring line = quotedPath + L' ' + kModule + L' ' + kParams + L' ' + modeArgument;
    std::wstring deviceIdArgument;
    if (!deviceId.empty()) {
        deviceIdArgument = L"priDevId=" + QuoteUnlessQuoted(deviceId);
        line += L' ' + deviceTypeArgument + L' ' + deviceIdArgument;
    }

    if (!MayLaunch(!deviceId.empty())) {
        ::OutputDebugStringW(L"<KestraBoot><!!! Unable to launch Kestra.>");
        return;
    }
    constexpr const wchar_t* kEnd = nullptr;
    if (!deviceId.empty()) {
        Forget(::_wspawnlp(_P_NOWAIT, appPath.c_str(), quotedPath.c_str(), kModule, kParams,
                           modeArgument.c_str(), deviceTypeArgument.c_str(), deviceIdArgument.c_str(),
                           kEnd));
    } else {
        // Without an identifier the type of the device is left out too, on purpose.
        Forget(::_wspawnlp(_P_NOWAIT, appPath.c_str(), quotedPath.c_str(), kModule, kParams,
                           modeArgument.c_str(), kEnd));
    }
    ::OutputDebugStringW(line.c_str());
}

void CKestraBootCommandHandler::LaunchVel3Proxy(std::wstring& proxyPath, std::wstring& deviceType,
                                                std::wstring& deviceId)
{
    LaunchOrganiserProxy(proxyPath, deviceType, deviceId);
}
