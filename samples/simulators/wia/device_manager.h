// The device manager that wia_service.exe hands out.
#pragma once

#include <windows.h>

namespace kestraboot::simulators
{

HRESULT MakeDeviceManager(REFIID interfaceId, void** object);

[[nodiscard]] long LiveManagers() noexcept;

} // namespace kestraboot::simulators
