#include "trackers/still_image/sti_report.h"

#include "foundation/trace.h"
#include "service/dispatch.h"
#include "service/windows_version.h"
#include "trackers/wia/imaging_type.h"
#include "trackers/wia/wia_device_tracker.h"

#include <string>
#include <string_view>

namespace kestraboot
{
namespace
{

constexpr std::size_t kPrefixLength = 2; // of "C|" and "S|"

ImagingType TypeFromTag(std::wstring_view tag) noexcept
{
    for (const ImagingType type : {ImagingType::Camera, ImagingType::Scanner}) {
        if (tag.starts_with(IdentityPrefix(type))) {
            return type;
        }
    }
    return ImagingType::Other;
}

/// The tag of a device that is neither camera nor scanner has no prefix. Its kind is then empty,
/// and its identity still begins two characters into the tag (device_connect.h documents this).
void ReportTwainSource(const wchar_t* twainTag)
{
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><%ls>", twainTag);
    ::OutputDebugStringW(line);

    const std::wstring_view tag = twainTag;
    std::wstring kind = ImagingKindWord(TypeFromTag(tag));
    std::wstring identity(tag.size() > kPrefixLength ? tag.substr(kPrefixLength) : std::wstring_view());
    NotifyDeviceConnect(kind, identity);
}

void ReportWiaDevice(const wchar_t* internalName)
{
    WIADeviceTracker tracker;
    if (!tracker.Initialize()) {
        return;
    }
    const ImagingType type = tracker.GetDeviceType(internalName);
    if (type == ImagingType::Other) {
        ::OutputDebugStringW(L"<***DeviceConnect***><StiTracker><Could not get the device type.>");
        return;
    }
    const std::wstring tagged = std::wstring(IdentityPrefix(type)) + internalName;
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><StiTracker><WIA DEVICE><%ls>", tagged.c_str());
    ::OutputDebugStringW(line);

    std::wstring kind = ImagingKindWord(type);
    std::wstring identity = internalName;
    NotifyDeviceConnect(kind, identity);
}

} // namespace

void ReportStiDevice(const StiDeviceRecord& device)
{
    if (device.twainTag[0] != L'\0') {
        ReportTwainSource(device.twainTag);
    }
    if (GetWindowsVersionClass() == WindowsVersionClass::Xp) {
        ReportWiaDevice(device.internalName);
    }
}

} // namespace kestraboot
