#include "registry/run_value.h"

#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <shlwapi.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RunValue : testing::Test {
    RunValue() : proxy(folder.AddFile("a proxy.exe").wstring()) { MakeKey(HKEY_LOCAL_MACHINE, kRunKey); }
    static auto Stored() { return StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue); }
    RegistrySandbox sandbox;
    TempFolder folder;
    std::wstring proxy;
};

TEST_F(RunValue, IsThePathInQuotes)
{
    EXPECT_TRUE(SetRunValue(proxy));
    EXPECT_EQ(Stored(), L'"' + proxy + L'"');
}

TEST_F(RunValue, IsWrittenAsTextWithoutATerminatorThroughAKeyOpenForWriting)
{
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
            EXPECT_STREQ(path, kRunKey);
            EXPECT_EQ(access, 0x20006U);
            return open.CallOriginal(root, path, options, access, key);
        });
    const FAKE_IMPORT(RegSetValueExW) set([&](HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                              const BYTE* data, DWORD size) -> LONG {
        EXPECT_STREQ(name, L"Corvane Kestrafetch");
        EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
        EXPECT_EQ(size, (proxy.size() + 2) * sizeof(wchar_t));
        return set.CallOriginal(key, name, reserved, type, data, size);
    });
    EXPECT_TRUE(SetRunValue(proxy));
    EXPECT_EQ(open.Calls(), 1);
    EXPECT_EQ(set.Calls(), 1);
}

TEST_F(RunValue, IsNotWrittenForAMissingFile)
{
    ASSERT_TRUE(SetRunValue(proxy));
    EXPECT_FALSE(SetRunValue(proxy + L"x"));
    EXPECT_FALSE(SetRunValue(L""));
    EXPECT_EQ(Stored(), L'"' + proxy + L'"');
}

TEST_F(RunValue, IsNotWrittenForAPathInQuotesSinceThatIsNoFile)
{
    EXPECT_FALSE(SetRunValue(L'"' + proxy + L'"'));
    EXPECT_EQ(Stored(), std::nullopt);
}

TEST_F(RunValue, WouldNotBeQuotedTwice)
{
    const FAKE_IMPORT(PathFileExistsW) exists([](const wchar_t*) -> BOOL {
        return TRUE;
    });
    EXPECT_TRUE(SetRunValue(L"\"C:\\p.exe\""));
    EXPECT_EQ(Stored(), L"\"C:\\p.exe\"");
}

TEST_F(RunValue, CannotBeWrittenWithoutItsKey)
{
    RemoveKey(HKEY_LOCAL_MACHINE, kRunKey);
    EXPECT_FALSE(SetRunValue(proxy));
    EXPECT_FALSE(DeleteRunValue());
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kRunKey));
}

TEST_F(RunValue, IsReportedAsWrittenOnceTheKeyIsOpen)
{
    const FAKE_IMPORT(RegSetValueExW) set([](auto...) -> LONG {
        return ERROR_DISK_FULL;
    });
    EXPECT_TRUE(SetRunValue(proxy));
}

TEST_F(RunValue, IsDeletedThroughAKeyOpenWithFullAccess)
{
    PutText(HKEY_LOCAL_MACHINE, kRunKey, L"Another", L"stays");
    ASSERT_TRUE(SetRunValue(proxy));
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
            EXPECT_EQ(access, 0xF003FU);
            return open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_TRUE(DeleteRunValue());
    EXPECT_EQ(Stored(), std::nullopt);
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRunKey, L"Another"), L"stays");
    EXPECT_TRUE(DeleteRunValue()); // a missing value is not an error
}

TEST_F(RunValue, LeavesNoKeyOpen)
{
    EXPECT_EQ(HandlesLeftBy([&] {
                  SetRunValue(proxy);
                  DeleteRunValue();
              }),
              0);
}

} // namespace
} // namespace kestraboot
