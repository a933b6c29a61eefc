#include "foundation/registry_key.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

#include <optional>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

/// Records the arguments of RegSetValueExW, because Wine may store other data.
class WriteRecorder
{
public:
    struct Write {
        std::wstring name;
        DWORD type;
        std::string bytes;
        bool operator==(const Write&) const = default;
    };
    std::vector<Write> writes;

private:
    FAKE_IMPORT(RegSetValueExW)
    set{[this](HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data,
               DWORD size) -> LONG {
        writes.push_back(
            {name != nullptr ? name : L"(default)", type, {reinterpret_cast<const char*>(data), size}});
        return set.CallOriginal(key, name, reserved, type, data, size);
    }};
};

struct RegistryWrite : testing::Test {
    RegistryWrite() { MakeKey(HKEY_LOCAL_MACHINE, L"A"); }
    RegistrySandbox sandbox;
    WriteRecorder recorder;
};

TEST_F(RegistryWrite, StoresTextWithoutItsTerminator)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    key.SetString(L"Text", L"abc");
    key.SetString(L"Empty", L"");
    EXPECT_EQ(key.Status(), ERROR_SUCCESS);
    EXPECT_EQ(recorder.writes,
              (std::vector<WriteRecorder::Write>{{L"Text", REG_SZ, std::string("a\0b\0c\0", 6)},
                                                 {L"Empty", REG_SZ, ""}}));
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, L"A", L"Text"), L"abc");
}

TEST_F(RegistryWrite, StoresANumberInFourBytes)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    key.SetDword(L"Number", 0x01020304);
    EXPECT_EQ(recorder.writes, (std::vector<WriteRecorder::Write>{{L"Number", REG_DWORD, "\4\3\2\1"}}));
}

TEST_F(RegistryWrite, ThroughAKeyOpenForReadingIsRefused)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_READ);
    key.SetDword(L"Number", 1);
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
    key.SetString(L"Text", L"abc");
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, L"A", L"Number"), std::nullopt);
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, L"A", L"Text"), std::nullopt);
}

TEST_F(RegistryWrite, DeletesAValueAndReportsWhetherItExisted)
{
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"abc");
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_ALL_ACCESS);
    EXPECT_TRUE(key.DeleteValue(L"Text"));
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, L"A", L"Text"), std::nullopt);
    EXPECT_FALSE(key.DeleteValue(L"Text"));
    EXPECT_EQ(key.Status(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryWrite, CreatesASubkeyWithAText)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    const UniqueRegistryHandle created = key.CreateSubkeyWithString(L"B\\C", L"Text", L"abc");
    EXPECT_TRUE(created);
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, L"A\\B\\C", L"Text"), L"abc");
    EXPECT_EQ(recorder.writes,
              (std::vector<WriteRecorder::Write>{{L"Text", REG_SZ, std::string("a\0b\0c\0", 6)}}));
}

TEST_F(RegistryWrite, CreatesASubkeyWithoutAnyValueForNoText)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    EXPECT_TRUE(key.CreateSubkeyWithString(L"B", L"Text", nullptr));
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, L"A\\B"));
    EXPECT_TRUE(recorder.writes.empty());
}

TEST_F(RegistryWrite, OpensAnExistingSubkeyWithWriteAccessAlone)
{
    PutDword(HKEY_LOCAL_MACHINE, L"A\\B", L"Number", 3);
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    const FAKE_IMPORT(RegCreateKeyExW) create(
        [&](HKEY parent, const wchar_t* subkey, DWORD reserved, wchar_t* className, DWORD options,
            REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* made, DWORD* disposition) -> LONG {
            EXPECT_EQ(className, nullptr);
            EXPECT_EQ(options, 0U);
            EXPECT_EQ(access, 0x20006U);
            EXPECT_EQ(security, nullptr);
            return create.CallOriginal(parent, subkey, reserved, className, options, access, security,
                                       made, disposition);
        });
    const UniqueRegistryHandle opened = key.CreateSubkeyWithString(L"B", nullptr, nullptr);
    EXPECT_TRUE(opened);
    EXPECT_EQ(create.Calls(), 1);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, L"A\\B", L"Number"), 3U);
}

TEST_F(RegistryWrite, ToASubkeyThatCannotBeCreatedReturnsNull)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    const FAKE_IMPORT(RegCreateKeyExW) create([](auto...) -> LONG {
        return ERROR_ACCESS_DENIED;
    });
    EXPECT_FALSE(key.CreateSubkeyWithString(L"B", L"Text", L"abc"));
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(recorder.writes.empty());
}

TEST_F(RegistryWrite, OfASubkeysTextThatFailsKeepsTheSubkeyAndReturnsTheStatus)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    const FAKE_IMPORT(RegCreateKeyExW)
        create([&](HKEY parent, const wchar_t* subkey, DWORD reserved, wchar_t* className, DWORD options,
                   REGSAM, SECURITY_ATTRIBUTES* security, HKEY* made, DWORD* disposition) -> LONG {
            return create.CallOriginal(parent, subkey, reserved, className, options, KEY_READ, security,
                                       made, disposition);
        });
    EXPECT_TRUE(key.CreateSubkeyWithString(L"B", L"Text", L"abc"));
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
}

} // namespace
} // namespace kestraboot
