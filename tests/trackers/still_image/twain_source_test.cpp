// The data source that belongs to a device, and the names in the source manager's list.
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "trackers/still_image/twain_source.h"

#include <gtest/gtest.h>

#include <string>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kDevice = L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001";
constexpr const wchar_t* kDeviceData = L"SYSTEM\\CurrentControlSet\\Control\\Class\\"
                                       L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001\\DeviceData";

class DeviceTwainSource : public testing::Test
{
protected:
    RegistrySandbox registry;
    TextField name = L"before";
};

TEST_F(DeviceTwainSource, IsReadFromTheDevicesClassKey)
{
    PutText(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", L"Fine Scan 3");
    EXPECT_TRUE(FindTwainSource(kDevice, &name));
    EXPECT_STREQ(name, L"Fine Scan 3");
}

TEST_F(DeviceTwainSource, IsReadWithReadAccessAlone)
{
    PutText(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", L"Fine Scan 3");
    const FAKE_IMPORT(RegOpenKeyExW)
        opens([&](HKEY root, const wchar_t* subkey, DWORD options, REGSAM access, HKEY* opened) {
            EXPECT_EQ(access, static_cast<REGSAM>(KEY_READ));
            return opens.CallOriginal(root, subkey, options, access, opened);
        });
    EXPECT_TRUE(FindTwainSource(kDevice, &name));
    EXPECT_EQ(opens.Calls(), 1);
}

TEST_F(DeviceTwainSource, IsMissingWithoutTheKeyOrTheValue)
{
    EXPECT_FALSE(FindTwainSource(kDevice, &name));
    MakeKey(HKEY_LOCAL_MACHINE, kDeviceData);
    EXPECT_FALSE(FindTwainSource(kDevice, &name));
    EXPECT_STREQ(name, L"before");
}

TEST_F(DeviceTwainSource, IsMissingForNullArguments)
{
    PutText(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", L"Fine Scan 3");
    EXPECT_FALSE(FindTwainSource(nullptr, &name));
    EXPECT_FALSE(FindTwainSource(kDevice, nullptr));
    EXPECT_STREQ(name, L"before");
}

TEST_F(DeviceTwainSource, LongerThanItsFieldIsCut)
{
    struct {
        TextField field;
        wchar_t guard;
    } memory = {{}, L'#'};
    for (const std::size_t length : {258U, 259U, 260U, 261U, 5000U}) {
        const std::wstring text(length, L'n');
        PutText(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", text);
        EXPECT_TRUE(FindTwainSource(kDevice, &memory.field));
        EXPECT_EQ(memory.field, text.substr(0, 259)) << length;
        EXPECT_EQ(memory.guard, L'#');
    }
}

TEST_F(DeviceTwainSource, StoredWithoutATerminatorOrAsAnotherTypeStaysInBounds)
{
    PutBytes(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", REG_SZ, L"Fine", 4 * sizeof(wchar_t));
    EXPECT_TRUE(FindTwainSource(kDevice, &name));
    EXPECT_STREQ(name, L"Fine");
    PutBytes(HKEY_LOCAL_MACHINE, kDeviceData, L"TwainDS", REG_BINARY, "\x41\x00\x42", 3);
    EXPECT_TRUE(FindTwainSource(kDevice, &name));
    EXPECT_STREQ(name, L"AB");
}

class ListedTwainSource : public testing::Test
{
protected:
    void Install(const std::vector<std::string>& lines) { standIns.Write("twain_sources.txt", lines); }

    StandInFolder standIns;
};

TEST_F(ListedTwainSource, IsComparedWholeAndWithoutCase)
{
    Install({"source Other", "source Fine Scan 3"});
    EXPECT_TRUE(TwainSourceListed(L"Fine Scan 3"));
    EXPECT_TRUE(TwainSourceListed(L"fINE sCAN 3"));
    EXPECT_FALSE(TwainSourceListed(L"Fine Scan"));
    EXPECT_FALSE(TwainSourceListed(L"Fine Scan 33"));
    EXPECT_FALSE(TwainSourceListed(L""));
    EXPECT_FALSE(TwainSourceListed(nullptr));
}

TEST_F(ListedTwainSource, OfAnEmptyListIsNone)
{
    Install({});
    EXPECT_FALSE(TwainSourceListed(L"Fine Scan 3"));
    EXPECT_FALSE(TwainSourceListed(L""));
}

TEST_F(ListedTwainSource, OfTheWiaBridgeDoesNotCount)
{
    Install(
        {"source WIA-Fine Scan", "source wia-other", "source Wia-", "source WIA Fine", "source xWIA-"});
    EXPECT_FALSE(TwainSourceListed(L"WIA-Fine Scan"));
    EXPECT_FALSE(TwainSourceListed(L"wia-other"));
    EXPECT_FALSE(TwainSourceListed(L"WIA-"));
    EXPECT_TRUE(TwainSourceListed(L"WIA Fine"));
    EXPECT_TRUE(TwainSourceListed(L"xwia-"));
}

TEST_F(ListedTwainSource, BeyondAsciiIsWidenedFromTheAnsiCodePage)
{
    Install({"source Gerät Ü"});
    EXPECT_TRUE(TwainSourceListed(L"Ger\u00E4t \u00DC"));
    EXPECT_TRUE(TwainSourceListed(L"GER\u00E4T \u00DC"));
    EXPECT_FALSE(TwainSourceListed(L"Ger\u00C3\u00A4t \u00DC"));
}

TEST_F(ListedTwainSource, OfThirtyFourBytesNeedsNoTerminator)
{
    const std::string full = "0123456789012345678901234567890123"; // fills the field
    Install({"source " + full + "beyond", "source Fine"});
    EXPECT_TRUE(TwainSourceListed(std::wstring(full.begin(), full.end()).c_str()));
    EXPECT_FALSE(TwainSourceListed(std::wstring(full.begin(), full.end() - 1).c_str()));
    EXPECT_TRUE(TwainSourceListed(L"Fine"));
}

TEST_F(ListedTwainSource, IsGivenUpOnAListWithoutEnd)
{
    Install({"source Fine", "endless"});
    EXPECT_FALSE(TwainSourceListed(L"Other"));
}

} // namespace
} // namespace kestraboot::tests
