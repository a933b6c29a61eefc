// Handles a device that arrives.
#pragma once

#include <string>

/// The callback of the device-connect service: starts the application for the device. Runs on a
/// tracker's thread, one call at a time.
void OnDeviceConnected(std::wstring& deviceKind, std::wstring& deviceId);

/// From here on a report starts nothing. A report that has passed this check is not waited for: it
/// ends with the process, which the caller must end at once.
void StartNothingMore() noexcept;
