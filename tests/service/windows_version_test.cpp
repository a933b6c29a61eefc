#include "service/windows_version.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

struct Version {
    DWORD platform = VER_PLATFORM_WIN32_NT;
    DWORD major = 0;
    DWORD minor = 0;
    BYTE product = VER_NT_WORKSTATION;
};

/// The class of this version of Windows. The first `failing` forms of the query fail.
WindowsVersionClass ClassOf(const Version& version, int failing = 0, std::vector<DWORD>* sizes = nullptr)
{
    const FAKE_IMPORT(GetVersionExW) query([&](OSVERSIONINFOW* record) -> BOOL {
        if (sizes != nullptr) {
            sizes->push_back(record->dwOSVersionInfoSize);
        }
        if (failing-- > 0) {
            return FALSE;
        }
        record->dwPlatformId = version.platform;
        record->dwMajorVersion = version.major;
        record->dwMinorVersion = version.minor;
        if (record->dwOSVersionInfoSize == sizeof(OSVERSIONINFOEXW)) {
            reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = version.product;
        }
        return TRUE;
    });
    return GetWindowsVersionClass();
}

Version Nt(DWORD major, DWORD minor, BYTE product = VER_NT_WORKSTATION)
{
    return {VER_PLATFORM_WIN32_NT, major, minor, product};
}

TEST(WindowsVersion, HasAClassForXpWindows2000AndVistaWorkstation)
{
    EXPECT_EQ(ClassOf(Nt(5, 1)), WindowsVersionClass::Xp);
    EXPECT_EQ(ClassOf(Nt(5, 0)), WindowsVersionClass::Windows2000);
    EXPECT_EQ(ClassOf(Nt(6, 0)), WindowsVersionClass::Vista);
    EXPECT_EQ(static_cast<unsigned>(WindowsVersionClass::Xp), 1U);
    EXPECT_EQ(static_cast<unsigned>(WindowsVersionClass::Windows2000), 2U);
    EXPECT_EQ(static_cast<unsigned>(WindowsVersionClass::Vista), 3U);
    EXPECT_EQ(static_cast<unsigned>(WindowsVersionClass::Other), 0U);
}

TEST(WindowsVersion, ServersOfVersion5AreTheirWorkstations)
{
    EXPECT_EQ(ClassOf(Nt(5, 0, VER_NT_SERVER)), WindowsVersionClass::Windows2000);
    EXPECT_EQ(ClassOf(Nt(5, 1, VER_NT_SERVER)), WindowsVersionClass::Xp);
}

TEST(WindowsVersion, EverythingElseIsOther)
{
    EXPECT_EQ(ClassOf(Nt(4, 0)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(5, 2)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(5, 3)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(6, 0, VER_NT_SERVER)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(6, 0, VER_NT_DOMAIN_CONTROLLER)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(6, 1)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(6, 2)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(7, 0)), WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf(Nt(10, 0)), WindowsVersionClass::Other);
}

TEST(WindowsVersion, APlatformOtherThanNtIsOther)
{
    EXPECT_EQ(ClassOf({VER_PLATFORM_WIN32_WINDOWS, 5, 1, VER_NT_WORKSTATION}),
              WindowsVersionClass::Other);
    EXPECT_EQ(ClassOf({3, 6, 0, VER_NT_WORKSTATION}), WindowsVersionClass::Other);
}

TEST(WindowsVersion, IsQueriedInTheExtendedFormFirstThenInThePlainOne)
{
    std::vector<DWORD> sizes;
    EXPECT_EQ(ClassOf(Nt(5, 1), 1, &sizes), WindowsVersionClass::Xp);
    EXPECT_EQ(sizes, (std::vector<DWORD>{284, 276}));
}

TEST(WindowsVersion, ThePlainFormReportsNoProductSoVistaIsThenOther)
{
    EXPECT_EQ(ClassOf(Nt(6, 0), 1), WindowsVersionClass::Other);
}

TEST(WindowsVersion, ThatCannotBeReadIsOther)
{
    std::vector<DWORD> sizes;
    EXPECT_EQ(ClassOf(Nt(5, 1), 2, &sizes), WindowsVersionClass::Other);
    EXPECT_EQ(sizes.size(), 2U);
}

} // namespace
} // namespace kestraboot
