#include "trackers/wia/imaging_type.h"

namespace kestraboot
{

ImagingType ImagingTypeOf(DWORD deviceType) noexcept
{
    switch (HIWORD(deviceType)) {
    case static_cast<unsigned>(ImagingType::Scanner):
        return ImagingType::Scanner;
    case static_cast<unsigned>(ImagingType::Camera):
        return ImagingType::Camera;
    default:
        return ImagingType::Other;
    }
}

const wchar_t* IdentityPrefix(ImagingType type) noexcept
{
    switch (type) {
    case ImagingType::Scanner:
        return L"S|";
    case ImagingType::Camera:
        return L"C|";
    case ImagingType::Other:
        break;
    }
    return L"";
}

std::wstring ImagingKindWord(ImagingType type)
{
    switch (type) {
    case ImagingType::Scanner:
        return DeviceKindWord(DeviceKind::Scanner);
    case ImagingType::Camera:
        return DeviceKindWord(DeviceKind::Camera);
    case ImagingType::Other:
        break;
    }
    return {};
}

} // namespace kestraboot
