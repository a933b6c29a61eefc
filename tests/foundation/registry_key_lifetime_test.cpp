#include "foundation/registry_key.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryKeyLifetime : testing::Test {
    RegistrySandbox sandbox;
};

TEST_F(RegistryKeyLifetime, OpensTheKeyWithTheGivenRootAndAccessMask)
{
    MakeKey(HKEY_CURRENT_USER, L"A\\B");
    MakeKey(HKEY_LOCAL_MACHINE, L"C");
    struct Open {
        HKEY root;
        std::wstring path;
        DWORD options;
        REGSAM access;
        bool operator==(const Open&) const = default;
    };
    std::vector<Open> opens;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            opens.push_back({root, path, options, access});
            return open.CallOriginal(root, path, options, access, key);
        });
    const RegistryKey user = RegistryKey::OpenCurrentUser(L"A\\B", KEY_READ);
    const RegistryKey machine = RegistryKey::OpenLocalMachine(L"C", KEY_ALL_ACCESS);

    EXPECT_TRUE(user.IsOpen());
    EXPECT_TRUE(machine.IsOpen());
    EXPECT_EQ(user.Status(), ERROR_SUCCESS);
    // No view flag is added to the mask.
    EXPECT_EQ(opens, (std::vector<Open>{{HKEY_CURRENT_USER, L"A\\B", 0, 0x20019},
                                        {HKEY_LOCAL_MACHINE, L"C", 0, 0xF003F}}));
}

TEST_F(RegistryKeyLifetime, AMissingKeyIsNotOpen)
{
    const RegistryKey key = RegistryKey::OpenLocalMachine(L"Missing", KEY_READ);
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.Status(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryKeyLifetime, WithoutAKeyNothingIsCalledAndTheStatusStays)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"Missing", KEY_ALL_ACCESS);
    const FAKE_IMPORT(RegQueryValueExW) query([](auto...) -> LONG {
        return ERROR_SUCCESS;
    });
    const FAKE_IMPORT(RegSetValueExW) set([](auto...) -> LONG {
        return ERROR_SUCCESS;
    });
    const FAKE_IMPORT(RegDeleteValueW) remove([](auto...) -> LONG {
        return ERROR_SUCCESS;
    });
    const FAKE_IMPORT(RegEnumKeyExW) enumerate([](auto...) -> LONG {
        return ERROR_SUCCESS;
    });
    const FAKE_IMPORT(RegCreateKeyExW) create([](auto...) -> LONG {
        return ERROR_SUCCESS;
    });
    const FAKE_IMPORT(RegCloseKey) close([](auto...) -> LONG {
        return ERROR_INVALID_HANDLE;
    });

    EXPECT_EQ(key.QueryString(L"x"), nullptr);
    EXPECT_EQ(key.QueryDword(L"x"), -1);
    EXPECT_EQ(key.EnumSubkey(0), nullptr);
    EXPECT_FALSE(key.DeleteValue(L"x"));
    EXPECT_FALSE(key.CreateSubkeyWithString(L"x", L"y", L"z"));
    key.SetString(L"x", L"y");
    key.SetDword(L"x", 1);
    key.Close();

    EXPECT_EQ(key.Status(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(query.Calls() + set.Calls() + remove.Calls() + enumerate.Calls() + create.Calls() +
                  close.Calls(),
              0);
}

TEST_F(RegistryKeyLifetime, ClosingKeepsTheStatusOfTheClose)
{
    MakeKey(HKEY_LOCAL_MACHINE, L"A");
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_READ);
    {
        const FAKE_IMPORT(RegCloseKey) close([&](HKEY handle) -> LONG {
            close.CallOriginal(handle);
            return ERROR_BUSY;
        });
        key.Close();
        key.Close();
        EXPECT_EQ(close.Calls(), 1);
    }
    EXPECT_EQ(key.Status(), ERROR_BUSY);
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.QueryDword(L"x"), -1);
}

TEST_F(RegistryKeyLifetime, NoHandleIsLeftOpen)
{
    MakeKey(HKEY_LOCAL_MACHINE, L"A\\B");
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"text");
    EXPECT_EQ(HandlesLeftBy([] {
                  RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_ALL_ACCESS);
                  static_cast<void>(key.QueryString(L"Text"));
                  static_cast<void>(key.EnumSubkey(0));
                  static_cast<void>(key.CreateSubkeyWithString(L"C", nullptr, nullptr));
                  const RegistryKey moved = std::move(key);
                  RegistryKey closed = RegistryKey::OpenCurrentUser(L"", KEY_READ);
                  closed.Close();
                  static_cast<void>(RegistryKey::OpenLocalMachine(L"Missing", KEY_READ));
              }),
              0);
}

TEST_F(RegistryKeyLifetime, AMovedKeyStaysOpenAndTheOldObjectHasNone)
{
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"text");
    RegistryKey old = RegistryKey::OpenLocalMachine(L"A", KEY_READ);
    ASSERT_STREQ(old.QueryString(L"Text"), L"text");
    RegistryKey moved = std::move(old);
    EXPECT_STREQ(moved.QueryString(L"Text"), L"text");
    EXPECT_EQ(old.QueryString(L"Text"), nullptr); // NOLINT(bugprone-use-after-move)
}

TEST_F(RegistryKeyLifetime, APathOfAnyLengthOpensOrFailsCleanly)
{
    EXPECT_TRUE(RegistryKey::OpenLocalMachine(L"", KEY_READ).IsOpen()); // the root itself
    for (const std::size_t length : {259U, 260U, 261U, 32767U}) {
        const RegistryKey key = RegistryKey::OpenLocalMachine(std::wstring(length, L'k'), KEY_READ);
        EXPECT_FALSE(key.IsOpen()) << length;
        EXPECT_NE(key.Status(), ERROR_SUCCESS) << length;
    }
    EXPECT_FALSE(RegistryKey::OpenLocalMachine(L"a\xD800\"\\", KEY_READ).IsOpen());
}

} // namespace
} // namespace kestraboot
