#include "trackers/volume/readable_drives.h"

#include "foundation/error_mode.h"

namespace kestraboot
{
namespace
{

bool HoldsMedium(const wchar_t* drivePath) noexcept
{
    wchar_t volumeName[255] = {};
    return ::GetVolumeInformationW(drivePath, volumeName, 255, nullptr, nullptr, nullptr, nullptr, 0) !=
           FALSE;
}

} // namespace

DriveScan ScanReadableDrives() noexcept
{
    const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
    DriveScan scan;
    scan.readable = ::GetLogicalDrives();
    for (int letter = 0; letter < kDriveLetters; ++letter) {
        const DriveMask bit = DriveMask{1} << letter;
        const DrivePath drive = PathOfDrive(letter);
        if ((scan.readable & bit) == 0 || ::GetDriveTypeW(drive.text) != DRIVE_REMOVABLE ||
            IsDisketteLetter(letter)) {
            continue;
        }
        scan.removablePresent = true;
        if (!HoldsMedium(drive.text)) {
            scan.readable &= ~bit;
        }
    }
    return scan;
}

} // namespace kestraboot
