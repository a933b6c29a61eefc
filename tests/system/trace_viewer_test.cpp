// The live trace viewer, as a support engineer runs it.
#include "tests/system/child_process.h"
#include "tests/system/installation.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::HasSubstr;

class TraceViewer : public testing::Test
{
protected:
    /// The event that gives a writer its turn, once the viewer has created it.
    HANDLE TurnOfAWriter() const
    {
        for (int tries = 0; tries < 1000; ++tries) {
            const HANDLE turn = ::OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_BUFFER_READY");
            if (turn != nullptr) {
                return turn;
            }
            ::Sleep(10);
        }
        return nullptr;
    }

    ChildProcess viewer{BuiltPrograms() / "kestratrace.exe", L"2"};
};

TEST_F(TraceViewer, ShowsEachLineWithTheProcessThatWroteIt)
{
    const HANDLE turn = TurnOfAWriter();
    ASSERT_NE(turn, nullptr);
    ::OutputDebugStringW(L"<one>");
    ::OutputDebugStringW(L"<two>\n");
    EXPECT_EQ(viewer.ExitCode(), 0U);
    const std::string process = std::to_string(::GetCurrentProcessId()) + "  ";
    EXPECT_THAT(viewer.Output(), HasSubstr(process + "<one>\n"));
    EXPECT_THAT(viewer.Output(), HasSubstr(process + "<two>\n"));
    ::CloseHandle(turn);
}

TEST_F(TraceViewer, GoesOnAfterAWriterThatWasTerminatedInItsTurn)
{
    const HANDLE turn = TurnOfAWriter();
    ASSERT_NE(turn, nullptr);
    ASSERT_EQ(::WaitForSingleObject(turn, 10'000), WAIT_OBJECT_0); // taken, and nothing written
    ::OutputDebugStringW(L"<after it>");
    EXPECT_EQ(viewer.ExitCode(), 0U);
    EXPECT_THAT(viewer.Output(), HasSubstr("<after it>"));
    ::CloseHandle(turn);
}

} // namespace
} // namespace kestraboot::tests
