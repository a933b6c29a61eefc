#include "service/device_kind.h"

namespace kestraboot
{

std::wstring DeviceKindWord(DeviceKind kind)
{
    switch (kind) {
    case DeviceKind::Camera:
        return L"camera";
    case DeviceKind::Mobile:
        return L"mobile";
    case DeviceKind::Scanner:
        return L"scanner";
    case DeviceKind::Video:
        return L"video";
    case DeviceKind::Audio:
        return L"audio";
    case DeviceKind::Volume:
        return L"volume";
    case DeviceKind::Archive:
        return L"archive";
    case DeviceKind::Unknown:
        break;
    }
    return L"unknown";
}

} // namespace kestraboot
