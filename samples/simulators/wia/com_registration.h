#pragma once

namespace kestraboot::simulators
{

[[nodiscard]] bool IsOnWine();

/// Makes this program the WIA device manager, for COM, and wia_device_list.dll beside it the handler of
/// its lists.
[[nodiscard]] bool RegisterForCom();

} // namespace kestraboot::simulators
