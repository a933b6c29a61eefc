// Opening the channel of debug output, with objects of the test's own in the place of the session's.
#include "tools/trace/debug_channel.h"

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <aclapi.h>
#include <cstring>
#include <memory>

namespace kestraboot::tools
{
namespace
{

/// What the channel makes has no name here; the first `held` openings find another reader.
class OpeningAChannel : public testing::Test
{
protected:
    int held = 0;
    int denied = 0; ///< the same of a reader with more rights
    int pauses = 0;
    std::vector<HANDLE> events; ///< not owned
    HANDLE section = nullptr;   ///< not owned

    const FAKE_IMPORT(CreateEventW) createEvent{
        [this](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name) {
            if (std::wcscmp(name, L"DBWIN_BUFFER_READY") == 0 && denied-- > 0) {
                ::SetLastError(ERROR_ACCESS_DENIED);
                return HANDLE{};
            }
            events.push_back(createEvent.CallOriginal(security, manual, set, nullptr));
            const bool another = std::wcscmp(name, L"DBWIN_BUFFER_READY") == 0 && held-- > 0;
            ::SetLastError(another ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
            return events.back();
        }};
    const FAKE_IMPORT(CreateFileMappingW) createSection{
        [this](HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protection, DWORD high, DWORD low,
               const wchar_t*) {
            section = createSection.CallOriginal(file, security, protection, high, low, nullptr);
            return section;
        }};
    const FAKE_IMPORT(Sleep) sleep{[this](DWORD) {
        ++pauses;
    }};
};

TEST_F(OpeningAChannel, GivesTheFirstTurnAtOnce)
{
    DebugChannel channel;
    ASSERT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(pauses, 0);
    EXPECT_EQ(::WaitForSingleObject(events.at(0), 0), WAIT_OBJECT_0);
}

TEST_F(OpeningAChannel, WaitsForAnotherReaderThatIsJustGoing)
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

/// What an object answers that a program with more rights made.
HANDLE Denied()
{
    ::SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

TEST_F(OpeningAChannel, FindsAReaderWithMoreRights)
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

TEST_F(OpeningAChannel, WaitsForAReaderWithMoreRightsThatIsJustGoing)
{
    denied = 3;
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(pauses, 3);
}

/// What every program of the session may do with an object.
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

TEST_F(OpeningAChannel, LetsEveryProgramOfTheSessionWriteAndNoMore)
{
    DebugChannel channel;
    ASSERT_EQ(channel.Open(), DebugChannel::Opening::Done);
    EXPECT_EQ(RightsOfEveryone(events.at(0)), static_cast<DWORD>(SYNCHRONIZE)) << "to await its turn";
    EXPECT_EQ(RightsOfEveryone(events.at(1)), static_cast<DWORD>(EVENT_MODIFY_STATE)) << "to say so";
    EXPECT_EQ(RightsOfEveryone(section), static_cast<DWORD>(FILE_MAP_WRITE)) << "its line";
}

TEST_F(OpeningAChannel, SaysThatSomethingCannotBeHad)
{
    const FAKE_IMPORT(CreateFileMappingW)
        none([](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, const wchar_t*) -> HANDLE {
            return nullptr;
        });
    DebugChannel channel;
    EXPECT_EQ(channel.Open(), DebugChannel::Opening::Failed);
}

TEST_F(OpeningAChannel, ReadsALineAndGivesTheNextTurn)
{
    DebugChannel channel;
    ASSERT_EQ(channel.Open(), DebugChannel::Opening::Done);
    const HANDLE turn = events.at(0);
    const HANDLE written = events.at(1);
    auto* const record = static_cast<char*>(::MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(record, nullptr);
    const DWORD process = 42;
    std::memcpy(record, &process, sizeof process);
    std::memset(record + sizeof process, 'x', 4096 - sizeof process); // no terminator at all
    ASSERT_EQ(::WaitForSingleObject(turn, 0), WAIT_OBJECT_0);
    ::SetEvent(written);

    const HANDLE stop = createEvent.CallOriginal(nullptr, TRUE, TRUE, nullptr);
    DebugChannel::Line line;
    EXPECT_EQ(channel.Next(stop, line), DebugChannel::Waiting::Line) << "before the stop";
    EXPECT_EQ(line.processId, 42U);
    EXPECT_EQ(line.text, std::string(4092, 'x'));
    EXPECT_EQ(::WaitForSingleObject(turn, 0), WAIT_OBJECT_0);
    EXPECT_EQ(channel.Next(stop, line), DebugChannel::Waiting::Stopped);
    ::CloseHandle(stop);
    ::UnmapViewOfFile(record);
}

} // namespace
} // namespace kestraboot::tools
