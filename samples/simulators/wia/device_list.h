// The devices as WIA lists them: an enumerator of property storages. It goes to another process by
// value, because Wine's own proxies of these interfaces lose results on the way back: the enumerator
// marshals itself, and a small in-process handler (wia_device_list.dll) makes a copy on the other side.
#pragma once

#include "listed_device.h"

#include <vector>
#include <wia.h>

namespace kestraboot::simulators
{

/// The class of the handler.
inline constexpr CLSID kDeviceListClass = {
    0x5C0F7A3E, 0x2B61, 0x4D0A, {0x9E, 0x57, 0x31, 0x8C, 0x44, 0xD2, 0x60, 0x1B}};

/// The enumerator, with one reference.
[[nodiscard]] IEnumWIA_DEV_INFO* MakeDeviceList(std::vector<ListedDevice> devices);

/// An enumerator whose devices come out of a stream: the handler's side.
HRESULT MakeUnmarshaler(REFIID interfaceId, void** object);

/// How many enumerators and storages live in this process.
[[nodiscard]] long LiveListObjects() noexcept;

} // namespace kestraboot::simulators
