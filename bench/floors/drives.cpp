#include "bench/floors/drives.h"

#include <windows.h>

namespace kestraboot::bench
{

void LookAtDrives()
{
    const UINT mode = ::SetErrorMode(SEM_FAILCRITICALERRORS);
    const DWORD letters = ::GetLogicalDrives();
    wchar_t drive[] = L"_:";
    for (int letter = 0; letter < 26; ++letter) {
        if ((letters & (DWORD{1} << letter)) == 0) {
            continue;
        }
        drive[0] = static_cast<wchar_t>(L'A' + letter);
        if (::GetDriveTypeW(drive) == DRIVE_REMOVABLE && letter >= 2) {
            wchar_t volumeName[255];
            ::GetVolumeInformationW(drive, volumeName, 255, nullptr, nullptr, nullptr, nullptr, 0);
        }
    }
    ::SetErrorMode(mode);
}

} // namespace kestraboot::bench
