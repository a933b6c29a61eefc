// The one path from every tracker to the host's callback.
#pragma once

#include <string>

namespace kestraboot
{

/// Creates the lock that serialises all reports. Call it once, before the first report; the lock is
/// never deleted.
void InitializeDispatch() noexcept;

/// Passes one arrival to the registered callback, on the calling thread, one call at a time in the
/// process; drops it if none is registered. The caller owns the strings. Catches everything that
/// the callback throws, after the lock is released.
void NotifyDeviceConnect(std::wstring& kind, std::wstring& deviceId) noexcept;

} // namespace kestraboot
