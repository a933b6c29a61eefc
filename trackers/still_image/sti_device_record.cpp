#include "trackers/still_image/sti_device_record.h"

#include "trackers/wia/imaging_type.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace kestraboot
{
namespace
{

// sti.h
static_assert(sizeof(STI_DEVICE_INFORMATIONW) == 312);
static_assert(offsetof(STI_DEVICE_INFORMATIONW, DeviceType) == 4);
static_assert(offsetof(STI_DEVICE_INFORMATIONW, szDeviceInternalName) == 8);
static_assert(offsetof(STI_DEVICE_INFORMATIONW, DeviceCapabilities) == 264);

/// Copies the name's 128 characters and the four bytes after them, because a name that fills its
/// field without a terminator continues into the capabilities. `name` holds zeros.
void CopyInternalName(TextField& name, const STI_DEVICE_INFORMATIONW& listed) noexcept
{
    constexpr std::size_t kBytes = sizeof listed.szDeviceInternalName + sizeof listed.DeviceCapabilities;
    static_assert(kBytes == 260 && kBytes < sizeof name);
    const auto* const bytes = reinterpret_cast<const std::byte*>(&listed);
    std::memcpy(name, bytes + offsetof(STI_DEVICE_INFORMATIONW, szDeviceInternalName), kBytes);
}

} // namespace

UniqueStiDeviceRecord ReadStiDevice(const STI_DEVICE_INFORMATIONW& listed)
{
    UniqueStiDeviceRecord record = MakeStiDeviceRecord();
    CopyInternalName(record.get()->internalName, listed);
    TextField dataSource = {};
    if (FindTwainSource(record.get()->internalName, &dataSource) && TwainSourceListed(dataSource)) {
        const ImagingType type = ImagingTypeOf(listed.DeviceType);
        CopyToField(record.get()->twainTag,
                    std::wstring(IdentityPrefix(type)) + L'"' + dataSource + L'"');
    }
    return record;
}

} // namespace kestraboot
