#pragma once

#include "service/device_kind.h"

#include <windows.h>
#include <string>

namespace kestraboot
{

/// The type of an imaging device, as far as it is reported. The numbers are those of
/// STI_DEVICE_MJ_TYPE in sti.h, which WIA uses too; every other type, such as a video device, is
/// Other.
enum class ImagingType : unsigned {
    Other = 0,
    Scanner = 1,
    Camera = 2,
};

/// From the device type of sti.h or of WIA_DIP_DEV_TYPE: the high half is the type, the low one a
/// subtype.
[[nodiscard]] ImagingType ImagingTypeOf(DWORD deviceType) noexcept;

/// The prefix of a device's tagged identity: "C|" for a camera, "S|" for a scanner, otherwise
/// nothing.
[[nodiscard]] const wchar_t* IdentityPrefix(ImagingType type) noexcept;

/// The word for the host; empty for Other.
[[nodiscard]] std::wstring ImagingKindWord(ImagingType type);

} // namespace kestraboot
