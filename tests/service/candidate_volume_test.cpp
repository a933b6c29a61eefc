#include "service/candidate_volume.h"
#include "service/volume_file_system.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>

namespace kestraboot
{
namespace
{

class CandidateVolume : public testing::Test
{
protected:
    UINT type = DRIVE_FIXED;
    std::wstring label;
    std::wstring fileSystem = L"NTFS";
    bool readable = true;
    std::vector<UINT> modesAtWork;
    std::wstring asked;

    static UINT ModeNow()
    {
        const UINT mode = ::SetErrorMode(0);
        ::SetErrorMode(mode);
        return mode;
    }

    FAKE_IMPORT(GetDriveTypeW)
    driveType{[this](const wchar_t*) {
        modesAtWork.push_back(ModeNow());
        return type;
    }};
    FAKE_IMPORT(GetVolumeInformationW)
    information{[this](const wchar_t* root, wchar_t* name, DWORD nameSize, DWORD* serial,
                       DWORD* component, DWORD* flags, wchar_t* system, DWORD systemSize) -> BOOL {
        modesAtWork.push_back(ModeNow());
        asked = root;
        EXPECT_EQ(nameSize, 260U);
        EXPECT_EQ(systemSize, 260U);
        EXPECT_EQ(serial, nullptr);
        EXPECT_EQ(component, nullptr);
        EXPECT_EQ(flags, nullptr);
        std::wcsncpy(name, label.c_str(), nameSize);
        std::wcsncpy(system, fileSystem.c_str(), systemSize);
        return readable;
    }};
};

TEST_F(CandidateVolume, ARemovableDriveQualifiesUnread)
{
    type = DRIVE_REMOVABLE;
    EXPECT_TRUE(IsCandidateVolume(L"E:"));
    EXPECT_EQ(information.Calls(), 0);
}

TEST_F(CandidateVolume, AFixedDiskQualifiesByTheMakersFileSystemAlone)
{
    for (const wchar_t* const name : {L"kodak", L"KODAK", L"Kodak Picture CD", L"xKoDaKx"}) {
        fileSystem = name;
        EXPECT_TRUE(IsCandidateVolume(L"C:")) << name;
    }
    EXPECT_EQ(asked, L"C:");
    for (const wchar_t* const name : {L"NTFS", L"FAT32", L"", L"koda", L"kod ak"}) {
        fileSystem = name;
        EXPECT_FALSE(IsCandidateVolume(L"C:")) << name;
    }
}

TEST_F(CandidateVolume, TheLabelOfAFixedDiskDoesNotMatter)
{
    label = L"KODAK";
    EXPECT_FALSE(IsCandidateVolume(L"C:"));
}

TEST_F(CandidateVolume, AFixedDiskThatCannotBeReadDoesNotQualify)
{
    fileSystem = L"kodak";
    readable = false;
    EXPECT_FALSE(IsCandidateVolume(L"C:"));
}

TEST_F(CandidateVolume, AFileSystemThatCannotBeReadIsNotTheMakers)
{
    fileSystem = L"kodak";
    readable = false;
    bool isKodak = true;
    EXPECT_FALSE(ReadVolumeFileSystem(L"C:", isKodak));
    EXPECT_FALSE(isKodak);
}

TEST_F(CandidateVolume, AFileSystemNameThatFillsItsFieldIsReadWithinIt)
{
    fileSystem = std::wstring(255, L'x') + L"kodak"; // 260 characters leave no room for a terminator
    EXPECT_FALSE(IsCandidateVolume(L"C:"));
    fileSystem = std::wstring(254, L'x') + L"kodakx";
    EXPECT_TRUE(IsCandidateVolume(L"C:"));
}

TEST_F(CandidateVolume, EveryOtherKindOfDriveDoesNotQualify)
{
    fileSystem = L"kodak";
    for (const int other :
         {DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR, DRIVE_REMOTE, DRIVE_CDROM, DRIVE_RAMDISK}) {
        type = static_cast<UINT>(other);
        EXPECT_FALSE(IsCandidateVolume(L"E:")) << other;
    }
}

TEST_F(CandidateVolume, NoErrorBoxShowsAndThePreviousModeIsRestored)
{
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    EXPECT_FALSE(IsCandidateVolume(L"C:"));
    EXPECT_EQ(modesAtWork, (std::vector<UINT>{SEM_FAILCRITICALERRORS, SEM_FAILCRITICALERRORS}));
    EXPECT_EQ(::SetErrorMode(0), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
}

} // namespace
} // namespace kestraboot
