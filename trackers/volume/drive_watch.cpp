#include "trackers/volume/drive_watch.h"

#include "foundation/error_mode.h"
#include "service/volume_file_system.h"

namespace kestraboot
{

DriveWatch::DriveWatch() noexcept
{
    static_cast<void>(DetectChange());
}

bool DriveWatch::DetectChange() noexcept
{
    const DriveScan scan = ScanReadableDrives();
    removablePresent = scan.removablePresent;
    if (scan.readable == 0) {
        return false;
    }
    newDrives = scan.readable & ~knownDrives;
    knownDrives = scan.readable;
    return newDrives != 0;
}

std::optional<DrivePath> DriveWatch::ChooseDriveToReport() const noexcept
{
    const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
    for (int letter = 0; letter < kDriveLetters; ++letter) {
        if ((newDrives & (DriveMask{1} << letter)) == 0) {
            continue;
        }
        const DrivePath drive = PathOfDrive(letter);
        const bool removable = ::GetDriveTypeW(drive.text) == DRIVE_REMOVABLE;
        bool isKodak = false;
        if (ReadVolumeFileSystem(drive.text, isKodak) && (removable || isKodak) &&
            !IsDisketteLetter(letter)) {
            return drive;
        }
    }
    return std::nullopt;
}

} // namespace kestraboot
