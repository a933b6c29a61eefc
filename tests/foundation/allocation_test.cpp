// When memory runs out in the foundation, the caller gets std::bad_alloc, and no handle stays open.
#include "foundation/process_identity.h"
#include "foundation/registry_key.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kPath = L"a key with a name too long for a small string";
const std::wstring kText(300, L't'); // longer than the first buffer

TEST(OutOfMemory, EscapesARegistryReadAndLeavesNoKeyOpen)
{
    const RegistrySandbox sandbox;
    PutText(HKEY_LOCAL_MACHINE, kPath, L"Text", kText);
    MakeKey(HKEY_LOCAL_MACHINE, std::wstring(kPath) + L"\\Sub");
    // Allocations: the path, the text, the name.
    EXPECT_EQ(ForEveryAllocation(
                  [] {
                      RegistryKey key = RegistryKey::OpenLocalMachine(kPath, KEY_READ);
                      static_cast<void>(key.QueryString(L"Text"));
                      static_cast<void>(key.EnumSubkey(0));
                  },
                  [](bool threw) {
                      EXPECT_TRUE(threw);
                  }),
              3);
}

TEST(OutOfMemory, InAReadLeavesTheKeyUsable)
{
    const RegistrySandbox sandbox;
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Short", L"short");
    PutText(HKEY_LOCAL_MACHINE, L"A", L"Text", kText);
    PutBytes(HKEY_LOCAL_MACHINE, L"A", L"Empty", REG_SZ, "", 0);
    PutBytes(HKEY_LOCAL_MACHINE, L"A", L"Byte", REG_SZ, "b", 1);
    RegistryKey key = RegistryKey::OpenLocalMachine(L"A", KEY_READ);
    ASSERT_STREQ(key.QueryString(L"Short"), L"short");
    {
        const AllocationFailure failure(0);
        EXPECT_THROW(static_cast<void>(key.QueryString(L"Text")), std::bad_alloc);
    }
    EXPECT_EQ(key.QueryString(L"Empty"), nullptr) << "the buffer is gone";
    EXPECT_STREQ(key.QueryString(L"Byte"), L"b");
    EXPECT_STREQ(key.QueryString(L"Short"), L"short");
    EXPECT_STREQ(key.QueryString(L"Text"), kText.c_str());
}

TEST(OutOfMemory, EscapesTheProcessIdentityAndLeavesTheRecordUnchanged)
{
    ProcessInfo info;
    EXPECT_GE(ForEveryAllocation(
                  [&] {
                      info = {77, nullptr, L"before"};
                      GetCurrentProcessInfo(info);
                  },
                  [&](bool threw) {
                      EXPECT_TRUE(threw);
                      EXPECT_EQ(info.processId, 77U);
                      EXPECT_EQ(info.executablePath, L"before");
                  }),
              1);
    EXPECT_EQ(info.processId, ::GetCurrentProcessId());
}

} // namespace
} // namespace kestraboot
