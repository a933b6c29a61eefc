// Opening the channel of debug output, with objects of the test's own in the place of the session's.
#include "tests/tools/own_channel.h"

#include <gtest/gtest.h>

#include <aclapi.h>
#include <cstring>

namespace kestraboot::tools
{
namespace
{

using OpeningAChannel = OwnChannel;

TEST_F(OpeningAChannel, GivesTheFirstTurnAtOnce)
{
    DebugChannel channel;
    ASSERT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(pauses, 0);
    EXPECT_TRUE(TakeTurn());
}

TEST_F(OpeningAChannel, WaitsForAnotherReaderThatIsJustExiting)
{
    held = 3;
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(pauses, 3);
}

TEST_F(OpeningAChannel, GivesUpOnAReaderThatStays)
{
    held = 1000;
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::HeldByAnother);
    EXPECT_LT(pauses, 100);
}

/// The answer of an object that a program with more privileges made.
HANDLE Denied()
{
    ::SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

TEST_F(OpeningAChannel, FindsAReaderWithMorePrivileges)
{
    for (const wchar_t* const object : {L"DBWIN_BUFFER_READY", L"DBWIN_DATA_READY"}) {
        const FAKE_IMPORT(CreateEventW)
            mine([&](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name) {
                return std::wcscmp(name, object) == 0
                           ? Denied()
                           : mine.CallOriginal(security, manual, set, nullptr);
            });
        DebugChannel channel;
        EXPECT_EQ(channel.Open(), DebugChannel::Opening::HeldByAnother) << std::wstring(object).size();
    }
    const FAKE_IMPORT(CreateFileMappingW)
        mine([](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, const wchar_t*) {
            return Denied();
        });
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::HeldByAnother);
}

TEST_F(OpeningAChannel, WaitsForAReaderWithMorePrivilegesThatIsJustExiting)
{
    denied = 3;
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(pauses, 3);
}

/// The permissions of every program of the session on an object.
DWORD RightsOfEveryone(HANDLE object)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    PACL list = nullptr;
    EXPECT_EQ(::GetSecurityInfo(object, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                &list, nullptr, &descriptor),
              static_cast<DWORD>(ERROR_SUCCESS));
    BYTE everyone[SECURITY_MAX_SID_SIZE] = {};
    DWORD size = sizeof everyone;
    EXPECT_TRUE(::CreateWellKnownSid(WinWorldSid, nullptr, everyone, &size));
    DWORD rights = 0;
    for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
        ACCESS_ALLOWED_ACE* entry = nullptr;
        EXPECT_TRUE(::GetAce(list, i, reinterpret_cast<void**>(&entry)));
        if (entry->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && ::EqualSid(&entry->SidStart, everyone)) {
            rights |= entry->Mask;
        }
    }
    ::LocalFree(descriptor);
    return rights;
}

TEST_F(OpeningAChannel, GivesEveryProgramOfTheSessionWriteAccessAlone)
{
    DebugChannel channel;
    ASSERT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(RightsOfEveryone(events.at(0)), static_cast<DWORD>(SYNCHRONIZE)) << "to await its turn";
    EXPECT_EQ(RightsOfEveryone(events.at(1)), static_cast<DWORD>(EVENT_MODIFY_STATE))
        << "to report its line";
    EXPECT_EQ(RightsOfEveryone(section), static_cast<DWORD>(FILE_MAP_WRITE)) << "its line";
    EXPECT_EQ(RightsOfEveryone(mutex),
              static_cast<DWORD>(SYNCHRONIZE | READ_CONTROL | MUTANT_QUERY_STATE))
        << "as Windows gives it";
}

TEST_F(OpeningAChannel, ReportsAnObjectThatCannotBeCreated)
{
    const FAKE_IMPORT(CreateFileMappingW)
        none([](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, const wchar_t*) -> HANDLE {
            return nullptr;
        });
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::Failed);
}

} // namespace
} // namespace kestraboot::tools
