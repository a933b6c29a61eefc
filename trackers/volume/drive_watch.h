#pragma once

#include "trackers/volume/readable_drives.h"

#include <optional>

namespace kestraboot
{

/// Remembers the readable drives and finds those that became readable. Use it from one thread at a
/// time.
class DriveWatch
{
public:
    /// Records the drives that are readable now as known: they are never reported.
    DriveWatch() noexcept;

    /// Scans again. True if drives became readable since the last scan that found any drive.
    [[nodiscard]] bool DetectChange() noexcept;

    /// The first of the drives that became readable at the last change and can hold camera media: a
    /// removable drive, or one with the maker's file system. There is one report for each change:
    /// the other drives count as known, and are not reported.
    [[nodiscard]] std::optional<DrivePath> ChooseDriveToReport() const noexcept;

    /// Whether the last scan found a removable drive other than A: and B:.
    [[nodiscard]] bool RemovablePresent() const noexcept { return removablePresent; }

private:
    bool removablePresent = false;
    DriveMask knownDrives = 0;
    DriveMask newDrives = 0;
};

} // namespace kestraboot
