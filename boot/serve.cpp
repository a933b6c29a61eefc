// The order of a start, and why:
//
// 1. The applications are loaded. Without any, the order is maintained and nothing else: devices are the
//    legacy organiser's again, the auto-run entry goes, the process ends. Control that was taken first
//    would have silenced the organiser, for nobody.
// 2. Control is taken. A second instance ends here, and one that the OEM file stops; neither has written
//    anything, but for what loading writes: a user's "Preferences" key, with 0, for each application
//    that the user has not seen before. It hides the machine's default flag from the next look on, so
//    that flag has counted for nobody when the first device arrives.
// 3. The order is maintained, so that the first start writes the auto-run entry, and the one after a
//    hand-over points it at a boot program that is there.
// 4. The control window is made: whoever wants this program to end finds it from here on.
// 5. The callback is registered, then the trackers are started: what arrives without one is dropped.
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

/// Ends the process under the trackers, without a word to any library. ExitProcess would end their
/// threads wherever they are and then run every library's last code: that waits for ever for what such a
/// thread held, of the loader, the heap or a plugin, and a log-off with it. A plugin's static objects
/// are not destroyed; no plugin may count on that, since Windows ends processes in this way too.
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

/// Returns when the program cannot serve.
void ServeInControl(CKestraBootCommandHandler& handler)
{
    // Once more: taking control works with 259 characters of a path, and a longer one, cut, names a
    // folder above this program's.
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
    // A tracker's window does not answer while a drive does not: Windows is not to ask the user, who has
    // never seen this program, what to do about it at log-off.
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
    // So that it does not matter from where the program was started; told below, where it counts.
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
    handler.StartVel3AutoLaunch(); // taking control took the devices from the organiser
    return ExitCode::CannotServe;
}
