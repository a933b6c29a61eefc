#pragma once

#include "trackers/still_image/sti_device_list.h"

#include <windows.h>
#include <sti.h>

namespace kestraboot
{

/// The still-image devices that the system lists, and which of them were there at the last look. One
/// thread.
class StiDevices
{
public:
    StiDevices() noexcept = default;

    /// Loads still imaging and takes the devices present as known: they are never reported. False when
    /// still imaging cannot be used. Throws std::bad_alloc or std::length_error.
    [[nodiscard]] bool OpenSti();

    /// Looks again. The first device that was not there at the last look, or null; it lives until the
    /// next look. Others that came with it count as known from now on: one a change, on purpose. When
    /// the devices cannot be listed, none is known afterwards, and the next look finds the first one
    /// new. Throws std::bad_alloc or std::length_error, and then what is known stays so.
    [[nodiscard]] const StiDeviceRecord* FindNewDevice();

    void Clear() noexcept;

private:
    /// False when the devices cannot be listed.
    [[nodiscard]] bool EnumerateStiDevices(StiDeviceList& devices) const;

    IStillImageW* stillImage = nullptr; ///< never released, and its library never freed, on purpose
    StiDeviceList knownDevices;
    StiDeviceList currentDevices;
};

} // namespace kestraboot
