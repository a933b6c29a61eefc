// The registrations of clients for the connect event.
#pragma once

#include <windows.h>

#include <string>
#include <wia.h>

namespace kestraboot::simulators
{

/// A registration, which ends with its last reference.
[[nodiscard]] IUnknown* RegisterForConnect(IWiaEventCallback* callback);

/// Calls every client that registered for the connect event. Not on a thread that is answering a
/// message.
void FireConnectEvent(const std::wstring& deviceId);

[[nodiscard]] long LiveRegistrations() noexcept;

} // namespace kestraboot::simulators
