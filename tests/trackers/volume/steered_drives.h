#pragma once

#include "tests/support/import_patch.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// The drives of the machine, as the test sets them. While the tracker's thread runs, change them
/// through Put and Remove.
class SteeredDrives
{
public:
    struct Drive {
        UINT type = DRIVE_FIXED;
        bool holdsMedium = true;
        std::wstring fileSystem = L"NTFS";
    };

    SteeredDrives();

    void Put(wchar_t letter, const Drive& drive);
    void Remove(wchar_t letter);

    std::map<wchar_t, Drive> drives;
    std::vector<wchar_t> probed;   ///< every letter whose volume was queried
    std::vector<UINT> modesAtWork; ///< the error mode at each query

private:
    std::recursive_mutex mutex;

    BOOL Answer(wchar_t letter, wchar_t* fileSystem, DWORD size);

    FAKE_IMPORT(GetLogicalDrives) logical;
    FAKE_IMPORT(GetDriveTypeW) type;
    FAKE_IMPORT(GetVolumeInformationW) information;
};

} // namespace kestraboot::tests
