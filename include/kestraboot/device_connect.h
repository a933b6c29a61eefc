// The device-connect service: starts the trackers and hands each qualifying arrival to the host.
#pragma once

#include "kestraboot/export.h"

#include <string>

/// Receives one arrival.
///
/// `deviceKind` is one of "volume", "camera", "scanner", "mobile", "video", "audio", "archive",
/// "unknown" (or empty, for a TWAIN source that is neither camera nor scanner). `deviceId` is the
/// device's identifier in the form of the tracker that found it; for a volume its drive, "E:".
/// Both strings belong to the tracker and live for the call only: copy what you keep.
///
/// Runs on a tracker's thread, one call at a time in the whole process; a slow callback holds up
/// every other report. An exception that it throws is swallowed. It may register another callback.
using DeviceConnectCallback = void (*)(std::wstring& deviceKind, std::wstring& deviceId);

extern "C" {

/// Starts the trackers that suit the running version of Windows, each on a thread of its own, and
/// returns at once. Call it once in a process: a second call starts a second set of trackers and
/// renews the lock under the first. There is no stop; the trackers run until the process ends, so
/// the library must stay loaded. Failures are absorbed: a tracker that cannot start reports nothing.
KESTRABOOT_API void StartDeviceConnectService();

/// Stores the callback in place of the one before; null unregisters. May be called before or after
/// the start and from any thread. Arrivals while none is registered are dropped.
KESTRABOOT_API void RegisterDeviceConnectCallback(DeviceConnectCallback callback);
}
