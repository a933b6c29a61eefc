#pragma once

#include <windows.h>

#include <string>

namespace kestraboot::simulators
{

struct ListedDevice {
    std::wstring id; ///< WIA_DIP_DEV_ID
    DWORD type;      ///< WIA_DIP_DEV_TYPE, the whole
};

} // namespace kestraboot::simulators
