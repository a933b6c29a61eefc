#include "service/volume_file_system.h"

#include "foundation/error_mode.h"
#include "foundation/text.h"

namespace kestraboot
{

bool ReadVolumeFileSystem(const wchar_t* drivePath, bool& isKodak) noexcept
{
    wchar_t fileSystem[kFieldCapacity] = {};
    bool read = false;
    {
        wchar_t volumeName[kFieldCapacity] = {};
        const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
        read = ::GetVolumeInformationW(drivePath, volumeName, kFieldCapacity, nullptr, nullptr, nullptr,
                                       fileSystem, kFieldCapacity) != FALSE;
    }
    fileSystem[kFieldCapacity - 1] = L'\0';
    isKodak = read && std::wcsstr(_wcslwr(fileSystem), L"kodak") != nullptr;
    return read;
}

} // namespace kestraboot
