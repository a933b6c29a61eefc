// kestraboot.exe, the reference host: takes control at log-on and starts the default application for
// each device that the library reports. It stands on the exported interface alone.
#include "boot/console.h"
#include "boot/control_window.h"
#include "boot/exit_code.h"
#include "kestraboot/kestraboot.h"

#include <windows.h>
#include <exception>
#include <string>
#include <vector>

namespace
{

/// Runs on a tracker's thread, one call at a time; the handler is this call's own, so nothing is shared
/// with the main thread.
void OnDeviceConnected(std::wstring& deviceKind, std::wstring& deviceId)
{
    CKestraBootCommandHandler handler;
    handler.LaunchDefaultKestra(deviceKind, deviceId);
}

ExitCode Serve(CKestraBootCommandHandler& handler)
{
    if (!handler.TakeControl()) {
        return ExitCode::NotInControl;
    }
    RegisterDeviceConnectCallback(OnDeviceConnected);
    StartDeviceConnectService();
    return ServeUntilAskedToQuit() ? ExitCode::Done : ExitCode::CannotServe;
}

ExitCode SetDefault(CKestraBootCommandHandler& handler, std::wstring& name, std::wstring& value)
{
    if (handler.SetApplicationDefaultStatus(name, value)) {
        return ExitCode::Done;
    }
    appInfo_tag application;
    return handler.GetApplicationInfo(name, application) ? ExitCode::Usage
                                                         : ExitCode::UnknownApplication;
}

bool Is(const std::wstring& word, const wchar_t* option) noexcept
{
    return _wcsicmp(word.c_str(), option) == 0;
}

ExitCode Run()
{
    CKestraBootCommandHandler handler;
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    if (words.empty()) {
        return ExitCode::Usage;
    }
    if (Is(words[0], L"-install")) {
        return Serve(handler);
    }
    if (Is(words[0], L"-uninstall")) {
        handler.Uninstall();
        return ExitCode::Done;
    }
    return SetDefault(handler, words[1], words[2]);
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    JoinParentConsole();
    ExitCode code = ExitCode::CannotServe;
    try {
        code = Run();
    } catch (const std::exception&) {
        // No memory at the start: nothing was taken into control, or the claim ends with the process.
    }
    // Ends the tracker threads with the process; no destructor runs under them.
    ::ExitProcess(static_cast<UINT>(code));
}
