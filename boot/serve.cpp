// The order of a start, and the reasons:
//
// 1. Load the applications. If there is none, maintain the order and stop: the legacy organiser
//    gets the devices again, the auto-run entry goes, the process ends. Taking control first would
//    have stopped the organiser although nobody serves.
// 2. Take control. A second instance ends here, and so does one that the OEM file stops. Neither
//    has written anything, except for the "Preferences" key, with 0, that loading creates for each
//    application that is new to this user. From the next loading on that key hides the machine's
//    default flag, so the flag has no effect any more when the first device arrives.
// 3. Maintain the order, so that the first start writes the auto-run entry, and the start after a
//    hand-over sets it to a boot program that exists.
// 4. Make the control window. From here on other processes can find this one and ask it to quit.
// 5. Register the callback, then start the trackers: an arrival without a callback is dropped.
#include "boot/serve.h"

#include "boot/arrivals.h"
#include "boot/console.h"
#include "boot/control_window.h"
#include "boot/libraries.h"
#include "kestraboot/kestraboot.h"

#include <windows.h>
#include <exception>
#include <new>
#include <vector>

namespace
{

/// Ends the process while trackers run, without a call into any library. ExitProcess would end
/// their threads wherever they are and then run every library's exit code. That code can wait forever
/// for a lock of the loader, the heap or a plugin that such a thread held, and the log-off waits
/// with it. A plugin's static objects are not destroyed; no plugin may rely on that, because
/// Windows ends processes in this way too.
[[noreturn]] void EndAtOnce(ExitCode code) noexcept
{
    ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(code));
    ::ExitProcess(static_cast<UINT>(code)); // not reached
}

bool IsAnyApplicationInstalled(CKestraBootCommandHandler& handler)
{
    handler.LoadInformation();
    std::vector<appInfo_tag> all;
    if (!handler.GetAllApplicationInfo(all)) {
        throw std::bad_alloc(); // an empty list must not be taken for "none"
    }
    return !all.empty();
}

/// Returns only if the program cannot serve.
void ServeInControl(CKestraBootCommandHandler& handler)
{
    // A second time: taking control works with 259 characters of a path, and a longer path, cut,
    // names a folder above this program's.
    if (!WorkInOwnFolder()) {
        ::OutputDebugStringW(
            L"<KestraBoot><!!! The boot program's folder cannot be made the current one. "
            L"No plugin is loaded.>");
    }
    handler.MaintainOrder();
    if (!MakeControlWindow()) {
        ReportFailure(L"<KestraBoot><!!! The boot program cannot start: no window can be made.>");
        return;
    }
    // A tracker's window does not answer while a drive does not. At log-off, Windows must not ask
    // the user about a program that the user has never seen.
    constexpr DWORD kUsualLevel = 0x280;
    ::SetProcessShutdownParameters(kUsualLevel, SHUTDOWN_NORETRY);
    RegisterDeviceConnectCallback(OnDeviceConnected);
    StartDeviceConnectService();
    ServeUntilAskedToQuit();
    EndAtOnce(ExitCode::Done);
}

} // namespace

ExitCode Serve()
{
    LeaveConsole();
    // So that the folder in which the program was started does not matter. A failure is reported
    // below.
    static_cast<void>(WorkInOwnFolder());
    CKestraBootCommandHandler handler;
    if (!IsAnyApplicationInstalled(handler)) {
        handler.MaintainOrder(); // ends the process, unless an application came meanwhile
    }
    if (!handler.TakeControl()) {
        return ExitCode::NotInControl;
    }
    try {
        ServeInControl(handler);
    } catch (const std::exception&) {
        handler.StartVel3AutoLaunch();
        throw;
    }
    handler.StartVel3AutoLaunch(); // TakeControl has stopped the organiser
    return ExitCode::CannotServe;
}
