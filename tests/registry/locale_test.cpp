#include "tests/registry/handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct Locale : testing::Test {
    Locale() : own(RegisterOwnSample(folder.Path(), L"Vellumry\\7.0"))
    {
        RegisterSample(folder.Path(), L"A");
    }
    RegistrySandbox sandbox;
    TempFolder folder;
    SampleApplication own;
    OpenHandler handler;
    std::wstring locale = L"before";
};

TEST_F(Locale, IsTheMachinesForTheApplication)
{
    PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"de_de");
    PutText(HKEY_CURRENT_USER, own.OwnKey(), L"locale", L"fr_fr");
    EXPECT_TRUE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"de_de");
}

TEST_F(Locale, IsEnglishWithoutAValue)
{
    EXPECT_FALSE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"en_us");
}

TEST_F(Locale, IsEnglishForAnEmptyValue)
{
    PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"");
    EXPECT_FALSE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"en_us");
    PutBytes(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", REG_SZ, "", 0);
    locale = L"before";
    EXPECT_FALSE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"en_us");
}

TEST_F(Locale, IsEnglishForAProgramThatIsNoApplicationsProxy)
{
    PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"de_de");
    RemoveKey(HKEY_LOCAL_MACHINE, own.keyPath);
    EXPECT_FALSE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"en_us");
}

TEST_F(Locale, IsEnglishWhenTheKeyCannotBeOpened)
{
    PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"de_de");
    bool ownKeyOpen = false;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            // The search opens the same key first. The second open is for the locale.
            if (root == HKEY_LOCAL_MACHINE && path == own.OwnKey()) {
                EXPECT_EQ(access, 0x20019U);
                if (ownKeyOpen) {
                    return ERROR_ACCESS_DENIED;
                }
                ownKeyOpen = true;
            }
            return open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_FALSE(handler.GetKestraLocaleString(locale));
    EXPECT_EQ(locale, L"en_us");
}

TEST_F(Locale, IsEnglishBeforeAnyQuery)
{
    const FAKE_IMPORT(RegOpenKeyExW) open([&](auto...) -> LONG {
        EXPECT_EQ(locale, L"en_us");
        throw std::runtime_error("the registry is gone");
    });
    EXPECT_THROW(static_cast<void>(handler.GetKestraLocaleString(locale)), std::runtime_error);
}

TEST_F(Locale, LeavesNoHandleOpen)
{
    PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"de_de");
    EXPECT_EQ(HandlesLeftBy([&] {
                  static_cast<void>(handler.GetKestraLocaleString(locale));
              }),
              0);
}

} // namespace
} // namespace kestraboot
