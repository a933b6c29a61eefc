#pragma once

#include "trackers/still_image/sti_device_list.h"

#include <windows.h>
#include <sti.h>

namespace kestraboot
{

/// The still-image devices that the system lists, and those that were present at the last scan. Use
/// it from one thread.
class StiDevices
{
public:
    StiDevices() noexcept = default;

    /// Loads still imaging and records the devices that are present as known: they are never
    /// reported. False if still imaging cannot be used. Throws std::bad_alloc or std::length_error.
    [[nodiscard]] bool OpenSti();

    /// Scans again. Returns the first device that was not present at the last scan, or null; it is
    /// valid until the next scan. There is one report for each change: other devices that came with
    /// it count as known. If the devices cannot be listed, none is known afterwards, and the next
    /// scan finds the first one new. Throws std::bad_alloc or std::length_error; the known devices
    /// are then unchanged.
    [[nodiscard]] const StiDeviceRecord* FindNewDevice();

    void Clear() noexcept;

private:
    /// False if the devices cannot be listed.
    [[nodiscard]] bool EnumerateStiDevices(StiDeviceList& devices) const;

    IStillImageW* stillImage = nullptr; ///< never released, its library never freed: both stay in use
    StiDeviceList knownDevices;
    StiDeviceList currentDevices;
};

} // namespace kestraboot
