#pragma once

#include "trackers/volume/readable_drives.h"

#include <optional>

namespace kestraboot
{

/// Remembers which drives were readable and finds those that became so. One thread at a time.
class DriveWatch
{
public:
    /// Takes what is readable now as known: it is never reported.
    DriveWatch() noexcept;

    /// Scans again. True when drives became readable since the last scan that saw any drive.
    [[nodiscard]] bool DetectChange() noexcept;

    /// The first of the drives that became readable at the last change which can hold camera media: a
    /// removable one or one with the maker's file system. The others are known from now on and are not
    /// reported: one report a change, on purpose.
    [[nodiscard]] std::optional<DrivePath> ChooseDriveToReport() const noexcept;

    /// Whether the last scan saw a removable drive other than A: and B:.
    [[nodiscard]] bool RemovablePresent() const noexcept { return removablePresent; }

private:
    bool removablePresent = false;
    DriveMask knownDrives = 0;
    DriveMask newDrives = 0;
};

} // namespace kestraboot
