// What the program does with a device that arrives.
#pragma once

#include <string>

/// The callback of the device-connect service: starts the application for the device. Runs on a
/// tracker's thread, one call at a time.
void OnDeviceConnected(std::wstring& deviceKind, std::wstring& deviceId);

/// From here on a report starts nothing. One that is past this check is not waited for: it ends with the
/// process, which is to follow at once.
void StartNothingMore() noexcept;
