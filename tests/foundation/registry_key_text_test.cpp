#include "foundation/registry_key.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <malloc.h>
#include <optional>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryText : testing::Test {
    RegistryText() { MakeKey(HKEY_LOCAL_MACHINE, L"A"); }
    static RegistryKey Open() { return RegistryKey::OpenLocalMachine(L"A", KEY_READ); }
    static void Put(DWORD type, const std::string& bytes, const wchar_t* name = L"Text")
    {
        PutBytes(HKEY_LOCAL_MACHINE, L"A", name, type, bytes.data(), bytes.size());
    }
    RegistrySandbox sandbox;
};

/// Stands for a registry that holds exactly these bytes, without a terminator. It fills the rest of the
/// caller's buffer with garbage.
class RawValue
{
public:
    explicit RawValue(std::string stored)
        : bytes(std::move(stored)),
          query([this](HKEY, const wchar_t*, DWORD*, DWORD*, BYTE* data, DWORD* size) -> LONG {
              return Answer(data, size);
          })
    {
    }
    void Store(std::string stored) { bytes = std::move(stored); }

    /// The size that the last read offered, and the size of its buffer.
    DWORD offered = 0;
    std::size_t allocated = 0;

private:
    LONG Answer(BYTE* data, DWORD* size)
    {
        const DWORD room = *size;
        *size = static_cast<DWORD>(bytes.size());
        if (data == nullptr) {
            return ERROR_SUCCESS;
        }
        offered = room;
        allocated = _msize(data);
        std::memset(data, 0xCC, room);
        if (room < bytes.size()) {
            return ERROR_MORE_DATA;
        }
        std::memcpy(data, bytes.data(), bytes.size());
        return ERROR_SUCCESS;
    }

    std::string bytes;
    FAKE_IMPORT(RegQueryValueExW) query;
};

std::string Bytes(const std::wstring& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

TEST_F(RegistryText, IsReadWithAndWithoutItsTerminator)
{
    Put(REG_SZ, Bytes({L"with\0", 5}));
    EXPECT_STREQ(Open().QueryString(L"Text"), L"with");
    Put(REG_SZ, Bytes(L"without"));
    EXPECT_STREQ(Open().QueryString(L"Text"), L"without");
}

TEST_F(RegistryText, IsTheDefaultValueForANullName)
{
    PutText(HKEY_LOCAL_MACHINE, L"A", nullptr, L"default");
    EXPECT_STREQ(Open().QueryString(nullptr), L"default");
}

TEST_F(RegistryText, ThatIsMissingIsNullAndTheStatusSaysWhy)
{
    RegistryKey key = Open();
    EXPECT_EQ(key.QueryString(L"Missing"), nullptr);
    EXPECT_EQ(key.Status(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryText, OfAMissingValueLeavesThePreviousText)
{
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"before");
    RegistryKey key = Open();
    const wchar_t* const before = key.QueryString(L"Text");
    EXPECT_EQ(key.QueryString(L"Missing"), nullptr);
    EXPECT_STREQ(before, L"before");
}

TEST_F(RegistryText, IsReadWhateverTheTypeOfTheValue)
{
    for (const DWORD type : std::initializer_list<DWORD>{REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY,
                                                         REG_DWORD, REG_LINK, REG_MULTI_SZ, REG_QWORD}) {
        Put(type, Bytes(L"%windir%"));
        EXPECT_STREQ(Open().QueryString(L"Text"), L"%windir%") << type; // and not expanded
    }
}

TEST_F(RegistryText, EndsAtItsFirstZero)
{
    Put(REG_MULTI_SZ, Bytes({L"one\0two\0\0", 9}));
    EXPECT_STREQ(Open().QueryString(L"Text"), L"one");
    Put(REG_SZ, Bytes({L"\0behind", 7}));
    EXPECT_STREQ(Open().QueryString(L"Text"), L"");
}

TEST_F(RegistryText, OfNoBytesIsNullAtFirstAndEmptyAfterwards)
{
    Put(REG_SZ, "", L"Empty");
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"before");
    RegistryKey key = Open();
    EXPECT_EQ(key.QueryString(L"Empty"), nullptr);
    ASSERT_STREQ(key.QueryString(L"Text"), L"before");
    EXPECT_STREQ(key.QueryString(L"Empty"), L""); // not the stale "before"
}

TEST_F(RegistryText, KeepsQuotesBackslashesAndUnpairedSurrogates)
{
    const std::wstring odd = L"\"C:\\a b\\\" \xD83D\xDE00 \xDC00 \xD800";
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", odd);
    EXPECT_EQ(Open().QueryString(L"Text"), odd);
}

TEST_F(RegistryText, OfAMegabyteIsWhole)
{
    const std::wstring huge(500'000, L'h');
    Put(REG_SZ, Bytes(huge));
    EXPECT_EQ(Open().QueryString(L"Text"), huge);
}

// Wine appends a terminator if the buffer has room for it. The registry of the next tests never does.

TEST_F(RegistryText, WithoutTerminatorEndsAfterTheStoredBytes)
{
    for (const std::size_t length : {1U, 2U, 3U, 127U, 259U, 260U, 261U, 32767U}) {
        const std::wstring text(length, L't');
        RawValue raw(Bytes(text));
        EXPECT_EQ(Open().QueryString(L"Text"), text) << length;
        EXPECT_GE(raw.allocated, raw.offered + sizeof(wchar_t)) << length;
    }
}

TEST_F(RegistryText, OfAnOddSizeEndsAfterItsLastByte)
{
    for (const std::size_t size : {1U, 3U, 5U, 521U, 65535U}) {
        const std::string stored(size, 'x');
        RawValue raw(stored);
        RegistryKey key = Open();
        const wchar_t* const text = key.QueryString(L"Text");
        ASSERT_NE(text, nullptr) << size;
        // The last byte is the low half of the last character.
        EXPECT_EQ(text, std::wstring(size / 2, L'\x7878') + L'x') << size;
        EXPECT_GE(raw.allocated, raw.offered + sizeof(wchar_t) + 1) << size;
    }
}

TEST_F(RegistryText, ShorterThanTheOneBeforeHasNoStaleTail)
{
    RawValue raw(Bytes(L"a long value"));
    RegistryKey key = Open();
    ASSERT_STREQ(key.QueryString(L"Text"), L"a long value");
    raw.Store(Bytes(L"short"));
    EXPECT_STREQ(key.QueryString(L"Text"), L"short");
    raw.Store("abc");
    EXPECT_EQ(key.QueryString(L"Text"), (std::wstring{L'\x6261', L'c'}));
    raw.Store("");
    EXPECT_STREQ(key.QueryString(L"Text"), L"");
}

TEST_F(RegistryText, IsNeverReadWithALargerSizeThanIsAllocated)
{
    RawValue raw("");
    RegistryKey key = Open();
    std::size_t before = 0;
    for (const std::size_t size : {40U, 7U, 20U, 8U, 9U, 41U, 1U, 0U, 2U, 300U}) {
        raw.Store(std::string(size, '\x11'));
        ASSERT_NE(key.QueryString(L"Text"), nullptr) << size;
        EXPECT_GE(raw.allocated, raw.offered + sizeof(wchar_t)) << size;
        EXPECT_EQ(raw.offered, std::max(size, before)) << size; // the key remembers the size of a value
        before = size;
    }
}

TEST_F(RegistryText, OfAUsualSizeAllocatesOnce)
{
    RegistryKey key = Open();
    const wchar_t* room = nullptr;
    for (const std::size_t length : {3U, 200U, 20U, 255U}) {
        Put(REG_SZ, Bytes(std::wstring(length, L't')));
        const wchar_t* const text = key.QueryString(L"Text");
        EXPECT_EQ(std::wcslen(text), length);
        EXPECT_TRUE(room == nullptr || text == room) << length;
        room = text;
    }
}

TEST_F(RegistryText, ThatGrowsBetweenSizeAndReadIsNullAndTheNextReadIsWhole)
{
    std::wstring stored = L"four";
    const FAKE_IMPORT(RegQueryValueExW)
        query([&](HKEY, const wchar_t*, DWORD*, DWORD*, BYTE* data, DWORD* size) -> LONG {
            const DWORD room = *size;
            *size = static_cast<DWORD>(stored.size() * sizeof(wchar_t));
            if (data == nullptr) {
                stored += L" and more";
                return ERROR_SUCCESS;
            }
            EXPECT_LE(room + sizeof(wchar_t), _msize(data));
            if (room < *size) {
                return ERROR_MORE_DATA;
            }
            std::memcpy(data, stored.data(), *size);
            return ERROR_SUCCESS;
        });
    RegistryKey key = Open();
    EXPECT_EQ(key.QueryString(L"Text"), nullptr);
    EXPECT_EQ(key.Status(), ERROR_MORE_DATA);
    stored = L"x";
    EXPECT_EQ(key.QueryString(L"Text"), nullptr);
}

TEST_F(RegistryText, CannotBeReadThroughAKeyOpenForWritingOnly)
{
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", L"secret");
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    EXPECT_EQ(key.QueryString(L"Text"), nullptr);
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
}

} // namespace
} // namespace kestraboot
