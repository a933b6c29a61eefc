// The device manager that wia_service.exe hands out, and its registered clients.
#pragma once

#include <windows.h>

#include <string>

namespace kestraboot::simulators
{

HRESULT MakeDeviceManager(REFIID interfaceId, void** object);

/// Calls every client that registered for the connect event. Not on a thread that is answering a
/// message.
void FireConnectEvent(const std::wstring& deviceId);

[[nodiscard]] long LiveManagers() noexcept;
[[nodiscard]] long LiveRegistrations() noexcept;

} // namespace kestraboot::simulators
