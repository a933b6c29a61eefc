#include "service/candidate_volume.h"

#include "foundation/error_mode.h"
#include "service/volume_file_system.h"

namespace kestraboot
{
namespace
{

UINT DriveType(const wchar_t* rootPath) noexcept
{
    const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
    return ::GetDriveTypeW(rootPath);
}

} // namespace

bool IsCandidateVolume(const wchar_t* rootPath) noexcept
{
    switch (DriveType(rootPath)) {
    case DRIVE_REMOVABLE:
        return true;
    case DRIVE_FIXED: {
        bool isKodak = false;
        return ReadVolumeFileSystem(rootPath, isKodak) && isKodak;
    }
    default:
        return false;
    }
}

} // namespace kestraboot
