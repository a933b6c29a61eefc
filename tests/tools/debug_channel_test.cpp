// Opening the channel of debug output, with objects of the test's own in the place of the session's.
#include "tools/trace/debug_channel.h"

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

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
    int pauses = 0;
    std::vector<HANDLE> events; ///< not owned
    HANDLE section = nullptr;   ///< not owned

    const FAKE_IMPORT(CreateEventW) createEvent{
        [this](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name) {
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
