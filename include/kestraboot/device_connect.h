/// @file
/// The device-connect service: starts the trackers and passes each accepted arrival to the host.
///
/// | kind word | comes from |
/// |---|---|
/// | `volume` | the volume tracker: a readable card or drive with a supported file on it; plugins |
/// | `camera`, `scanner` | the WIA and still-image trackers; plugins |
/// | `mobile`, `video`, `audio`, `archive`, `unknown` | plugins |
/// | (empty) | a TWAIN source that is neither camera nor scanner |
#pragma once

#include "kestraboot/export.h"

#include <string>

/// Receives one arrival: the kind of the device, which is a word of the table in device_connect.h, and
/// its identifier. The form of the identifier depends on the tracker that reports:
///
/// | reported by | identifier | characters |
/// |---|---|---|
/// | the volume tracker | the drive, "E:" | 2 |
/// | the still-image tracker, from TWAIN | the source's name **in double quotes** | up to 257 |
/// | the still-image tracker, from WIA (Windows XP) | still imaging's name of the device | up to 259 |
/// | a plugin | the identifier in its record | up to 259 |
/// | the WIA tracker | WIA's name of the device, **not cut** | no limit |
///
/// For a TWAIN source that is neither camera nor scanner, the kind is empty, and the identifier lacks
/// the first quote and the first letter; the last quote is there.
///
/// A `camera` or `scanner` can come from any of the last four. Check the length before you copy an
/// identifier into a buffer. An identifier may be empty.
///
/// **Ownership.** The tracker owns both strings, and they are valid during the call only: copy what you
/// need later. The callback may modify them; the tracker does not read them afterwards.
///
/// **Threads.** The callback runs on the thread that reports. That is a tracker's thread or a plugin's
/// own, with the stack, message queue and COM apartment that the plugin gave it.
///
/// - One call runs at a time in the whole process. A slow callback delays every other report; none is
///   dropped. Do not wait in the callback for another report.
/// - The lock is recursive. If the callback serves messages (a dialog, a call into another COM
///   apartment), its tracker or plugin can report on the same thread: the callback then runs a second
///   time inside the first call.
/// - The callback may register another callback.
/// - The callback may use a handler object of its own. A handler that the main thread uses as well needs
///   a lock in the host.
///
/// **Failures.** If the callback throws a C++ exception, the library swallows it and the tracker goes
/// on.
using DeviceConnectCallback = void (*)(std::wstring& deviceKind, std::wstring& deviceId);

extern "C" {

/// Starts the trackers, each on a thread of its own, and returns at once. The version that Windows
/// reports to this process decides which:
///
/// | tracker | Windows version |
/// |---|---|
/// | volumes; still-image devices | 5.0 (2000), 5.1 (XP), 6.0 workstation (Vista) |
/// | WIA | 5.1, 6.0 workstation |
/// | device plugins | every version |
///
/// **Call it once in a process**, after TakeControl(): that call sets the current directory, below which
/// the library searches for plugins. A second call would start a second set of trackers and initialise
/// the dispatch lock anew while the first set uses it.
///
/// **Lifetime.** The trackers cannot be stopped. They run until the process ends, so the library must
/// stay loaded until then. End the process by `TerminateProcess` on itself: no destructor runs while a
/// tracker still works, and nothing waits for a lock that a tracker's thread holds. `ExitProcess` can
/// wait forever.
///
/// **Effects.** The trackers create hidden windows and enter COM on their own threads. They load
/// "sti.dll", "twain_32.dll" and the plugins, and scan the folders of volumes that arrive. For each such
/// volume they read "SniffDepth" and the supported formats, and **maintain the order, which can end the
/// process** (CKestraBootInformationHandler::MaintainOrder()). Only the callback starts applications.
/// One other program is started by the library: if no compatible application is left and the legacy
/// organiser is installed, the volume tracker's thread starts the organiser's device-connect program
/// before it ends the process.
///
/// **Failures.** A tracker that cannot start reports no device and returns no error. The trace lines on
/// the debugger output show the reason where one is known.
KESTRABOOT_API void StartDeviceConnectService();

/// Replaces the callback. May be called before or after StartDeviceConnectService(), from any thread and
/// from the callback itself. Takes no lock and does not wait: a running call of the previous callback
/// continues. Arrivals are dropped while no callback is registered.
///
/// @param[in] callback null unregisters
KESTRABOOT_API void RegisterDeviceConnectCallback(DeviceConnectCallback callback);
}
