// An application's "DefaultFlag": which key's value counts, which call makes the user's key, which call
// writes.
#include "registry/application_record.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

const std::wstring kViewerKey = L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch";
const std::wstring kPrefs = kViewerKey + L"\\Preferences";

struct DefaultFlag : testing::Test {
    DefaultFlag()
    {
        MakeKey(HKEY_LOCAL_MACHINE, kViewerKey);
        MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    }
    static std::uint32_t Read(const std::wstring& keyPath = kViewerKey)
    {
        appInfo_tag record;
        ReadApplicationRecord(keyPath, record);
        return record.DefaultFlag;
    }
    RegistrySandbox sandbox;
};

TEST_F(DefaultFlag, IsTheUsersIfThereIsOne)
{
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 1);
    PutDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag", 0);
    EXPECT_EQ(Read(), 0U);
    PutDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag", 7);
    EXPECT_EQ(Read(), 7U);
    PutDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag", 0x80000000);
    EXPECT_EQ(Read(), 0x80000000U);
}

TEST_F(DefaultFlag, IsZeroIfTheUsersKeyHasNone)
{
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 1);
    MakeKey(HKEY_CURRENT_USER, kPrefs);
    EXPECT_EQ(Read(), 0U);
    PutDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag", 0xFFFFFFFF); // is the same as no value
    EXPECT_EQ(Read(), 0U);
}

TEST_F(DefaultFlag, IsTheMachinesOnceThenTheOneOfTheUsersNewKey)
{
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 1);
    EXPECT_EQ(Read(), 1U);
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag"), 0U);
    EXPECT_EQ(Read(), 0U);
    EXPECT_EQ(Read(), 0U);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag"), 1U);
}

TEST_F(DefaultFlag, IsZeroWithoutAnyKeyAndTheUsersKeyIsCreated)
{
    EXPECT_EQ(Read(), 0U);
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag"), 0U);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kPrefs));
}

TEST_F(DefaultFlag, OfTheMachineThatLooksMissingIsZero)
{
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 0xFFFFFFFF);
    EXPECT_EQ(Read(), 0U);
}

TEST_F(DefaultFlag, IsTheMachinesEachTimeForAUserWithoutTheRootKey)
{
    RemoveKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 1);
    EXPECT_EQ(Read(), 1U);
    EXPECT_EQ(Read(), 1U);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane"));
}

TEST_F(DefaultFlag, IsTheMachinesIfTheUsersKeyCannotBeCreated)
{
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 1);
    const FAKE_IMPORT(RegCreateKeyExW) create([](auto...) -> LONG {
        return ERROR_ACCESS_DENIED;
    });
    EXPECT_EQ(Read(), 1U);
    EXPECT_EQ(create.Calls(), 1);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kPrefs));
}

TEST_F(DefaultFlag, IsZeroIfTheUsersKeyCannotBeOpenedAndLeavesTheKeyUnchanged)
{
    PutDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag", 1);
    PutDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag", 2);
    for (const LONG failure : {ERROR_ACCESS_DENIED, ERROR_NO_SYSTEM_RESOURCES}) {
        FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            const bool isUsers = root == HKEY_CURRENT_USER && access == KEY_READ;
            return isUsers ? failure : open.CallOriginal(root, path, options, access, key);
        });
        EXPECT_EQ(Read(), 0U) << failure;
    }
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag"), 1U)
        << "the choice of the user was overwritten";
    EXPECT_EQ(Read(), 1U);
}

TEST_F(DefaultFlag, OfAProductNamedInLettersOfTheRootsPathNeverGetsItsUserKey)
{
    // The letters A, v, e and n at the front of "Avenue" occur in the root's path, and are stripped with
    // it.
    const std::wstring key = L"SOFTWARE\\Corvane\\Avenue\\Corvane Kestrafetch";
    MakeKey(HKEY_LOCAL_MACHINE, key);
    PutDword(HKEY_LOCAL_MACHINE, key + L"\\Preferences", L"DefaultFlag", 1);
    EXPECT_EQ(Read(key), 1U);
    EXPECT_EQ(Read(key), 1U);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\Avenue"));
    const std::wstring made = L"SOFTWARE\\Corvane\\ue\\Corvane Kestrafetch\\Preferences";
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, made));
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, made, L"DefaultFlag"), std::nullopt);
}

TEST_F(DefaultFlag, OfAnApplicationRightBelowTheRootNeverGetsItsUserKey)
{
    const std::wstring key = L"SOFTWARE\\Corvane\\Corvane Kestrafetch";
    PutDword(HKEY_LOCAL_MACHINE, key + L"\\Preferences", L"DefaultFlag", 1);
    EXPECT_EQ(Read(key), 1U);
    EXPECT_EQ(Read(key), 1U);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, key));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\ Kestrafetch\\Preferences"));
}

TEST_F(DefaultFlag, IsWrittenInBothHivesIfTheKeyExists)
{
    MakeKey(HKEY_CURRENT_USER, kPrefs);
    MakeKey(HKEY_LOCAL_MACHINE, kPrefs);
    WriteDefaultFlag(kPrefs, 5);
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag"), 5U);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag"), 5U);
}

TEST_F(DefaultFlag, IsWrittenInOneHiveIfTheOtherHasNoKey)
{
    MakeKey(HKEY_LOCAL_MACHINE, kPrefs);
    WriteDefaultFlag(kPrefs, 5);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kPrefs));
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, kPrefs, L"DefaultFlag"), 5U);

    RemoveKey(HKEY_LOCAL_MACHINE, kPrefs);
    MakeKey(HKEY_CURRENT_USER, kPrefs);
    WriteDefaultFlag(kPrefs, 6);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kPrefs));
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kPrefs, L"DefaultFlag"), 6U);
}

TEST_F(DefaultFlag, IsWrittenForTheUserFirstThroughKeysOpenForWriting)
{
    MakeKey(HKEY_CURRENT_USER, kPrefs);
    MakeKey(HKEY_LOCAL_MACHINE, kPrefs);
    std::vector<HKEY> roots;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_EQ(access, 0x20006U);
            roots.push_back(root);
            return open.CallOriginal(root, path, options, access, key);
        });
    WriteDefaultFlag(kPrefs, 1);
    EXPECT_EQ(roots, (std::vector<HKEY>{HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}));
}

} // namespace
} // namespace kestraboot
