// The one road from every tracker to the host's callback.
#pragma once

#include <string>

namespace kestraboot
{

/// Makes the lock that serialises all reports. Once, before the first report; it is never deleted.
void InitializeDispatch() noexcept;

/// Hands one arrival to the registered callback, on the calling thread, one call at a time in the
/// process; dropped when none is registered. The strings belong to the caller. What the callback throws
/// ends here, after the lock was left.
void NotifyDeviceConnect(std::wstring& kind, std::wstring& deviceId) noexcept;

} // namespace kestraboot
