#include "foundation/registry_key.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryNumber : testing::Test {
    RegistryNumber() { MakeKey(HKEY_LOCAL_MACHINE, L"A"); }
    static std::int32_t Read(const wchar_t* name)
    {
        return RegistryKey::OpenLocalMachine(L"A", KEY_READ).QueryDword(name);
    }
    RegistrySandbox sandbox;
};

TEST_F(RegistryNumber, IsReadAsStored)
{
    PutDword(HKEY_LOCAL_MACHINE, L"A", L"Number", 0x80000001);
    EXPECT_EQ(Read(L"Number"), static_cast<std::int32_t>(0x80000001));
    PutDword(HKEY_LOCAL_MACHINE, L"A", L"Number", 0);
    EXPECT_EQ(Read(L"Number"), 0);
}

TEST_F(RegistryNumber, ThatIsMissingReadsAsMinusOneAndTheStatusSaysWhy)
{
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_READ);
    EXPECT_EQ(key.QueryDword(L"Missing"), -1);
    EXPECT_EQ(key.Status(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryNumber, OfAllBitsCannotBeDistinguishedFromAMissingOne)
{
    PutDword(HKEY_LOCAL_MACHINE, L"A", L"Number", 0xFFFFFFFF);
    EXPECT_EQ(Read(L"Number"), -1);
}

TEST_F(RegistryNumber, OfFourBytesIsReadWhateverItsType)
{
    const unsigned char bytes[] = {7, 0, 0, 0};
    for (const DWORD type : std::initializer_list<DWORD>{REG_BINARY, REG_NONE, REG_SZ, REG_MULTI_SZ,
                                                         REG_DWORD_BIG_ENDIAN}) {
        PutBytes(HKEY_LOCAL_MACHINE, L"A", L"Number", type, bytes, sizeof bytes);
        EXPECT_EQ(Read(L"Number"), 7) << type;
    }
}

TEST_F(RegistryNumber, OfAnotherSizeReadsAsMissing)
{
    const unsigned char bytes[64] = {1, 1, 1, 1, 1, 1, 1, 1};
    for (const DWORD type :
         std::initializer_list<DWORD>{REG_DWORD, REG_BINARY, REG_SZ, REG_QWORD, REG_NONE}) {
        for (const std::size_t size : {0U, 1U, 2U, 3U, 5U, 8U, 64U}) {
            PutBytes(HKEY_LOCAL_MACHINE, L"A", L"Number", type, bytes, size);
            EXPECT_EQ(Read(L"Number"), -1) << type << ", " << size << " bytes";
        }
    }
}

TEST_F(RegistryNumber, CannotBeReadThroughAKeyOpenForWritingOnly)
{
    PutDword(HKEY_LOCAL_MACHINE, L"A", L"Number", 5);
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_WRITE);
    EXPECT_EQ(key.QueryDword(L"Number"), -1);
    EXPECT_EQ(key.Status(), ERROR_ACCESS_DENIED);
}

} // namespace
} // namespace kestraboot
