#include "foundation/registry_key.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryEnumeration : testing::Test {
    RegistryEnumeration() { MakeKey(HKEY_LOCAL_MACHINE, L"A"); }
    static RegistryKey Open() { return RegistryKey::OpenLocalMachine(L"A", KEY_READ); }
    RegistrySandbox sandbox;
};

TEST_F(RegistryEnumeration, NamesTheSubkeysByIndexAndEndsWithNull)
{
    MakeKey(HKEY_LOCAL_MACHINE, L"A\\one");
    MakeKey(HKEY_LOCAL_MACHINE, L"A\\two");
    RegistryKey key = Open();
    EXPECT_STREQ(key.EnumSubkey(0), L"one");
    EXPECT_STREQ(key.EnumSubkey(1), L"two");
    EXPECT_STREQ(key.EnumSubkey(0), L"one");
    EXPECT_EQ(key.EnumSubkey(2), nullptr);
    EXPECT_EQ(key.Status(), ERROR_NO_MORE_ITEMS);
}

TEST_F(RegistryEnumeration, AcceptsNamesOfUpTo127Characters)
{
    const std::wstring name(127, L'n');
    MakeKey(HKEY_LOCAL_MACHINE, L"A\\" + name);
    EXPECT_EQ(Open().EnumSubkey(0), name);
}

TEST_F(RegistryEnumeration, FailsAtANameOf128CharactersOrMore)
{
    for (const std::size_t length : {128U, 255U}) {
        const std::wstring name(length, L'n');
        MakeKey(HKEY_LOCAL_MACHINE, L"A\\" + name);
        RegistryKey key = Open();
        EXPECT_EQ(key.EnumSubkey(0), nullptr) << length;
        EXPECT_EQ(key.Status(), ERROR_MORE_DATA) << length;
        RemoveKey(HKEY_LOCAL_MACHINE, L"A\\" + name);
    }
}

TEST_F(RegistryEnumeration, PassesABufferOf128CharactersEachTime)
{
    const FAKE_IMPORT(RegEnumKeyExW) enumerate([](HKEY, DWORD, wchar_t* name, DWORD* capacity, DWORD*,
                                                  wchar_t*, DWORD*, FILETIME* written) -> LONG {
        EXPECT_EQ(*capacity, 128U);
        EXPECT_NE(written, nullptr);
        std::fill_n(name, *capacity, L'\0'); // writes the whole buffer
        *capacity = 5;
        return ERROR_SUCCESS;
    });
    RegistryKey key = Open();
    EXPECT_STREQ(key.EnumSubkey(0), L"");
    EXPECT_STREQ(key.EnumSubkey(1), L"");
    EXPECT_EQ(enumerate.Calls(), 2);
}

} // namespace
} // namespace kestraboot
