// The sweep itself: a scene of its own makes each mistake that the sweep must detect, as a proof that it
// does.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/handler_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <objbase.h>

#include <cstdlib>
#include <memory>

namespace kestraboot::tests
{
namespace
{

using testing::HasSubstr;
using testing::Not;

void ReadTheCommandLine(OpenHandler& handler)
{
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    for (const std::wstring& word : words) {
        Journal::Add(L"word", word.c_str());
    }
}

HANDLE letGo = nullptr;
std::vector<DWORD> lingering; // identifiers of threads

DWORD WINAPI Linger(void* running)
{
    ::SetEvent(running);
    return ::WaitForSingleObject(letGo, 60'000);
}

/// Returns when the thread runs: a thread that has not begun yet is not counted.
void LeakAThread()
{
    const HANDLE running = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD id = 0;
    ::CloseHandle(::CreateThread(nullptr, 65'536, Linger, running, 0, &id));
    lingering.push_back(id);
    ::WaitForSingleObject(running, INFINITE);
    ::CloseHandle(running);
}

class Sweep : public testing::Test
{
protected:
    void SetUp() override
    {
        if (std::getenv("KESTRABOOT_REWRITE_EXPECTED") != nullptr) {
            GTEST_SKIP() << "would overwrite the file of another scene";
        }
    }

    /// The messages of the failures that the check reports for the scene "command_line" with that
    /// operation in the place of its own.
    std::string Says(const HandlerOperation& operation, void (*check)(const Scene&) = SweepFaults)
    {
        testing::TestPartResultArray failures;
        {
            const testing::ScopedFakeTestPartResultReporter reporter(
                testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &failures);
            check(HandlerScene(machine, "command_line", operation));
        }
        std::string messages;
        for (int i = 0; i < failures.size(); ++i) {
            messages += std::string(failures.GetTestPartResult(i).message()) + '\n';
        }
        return messages;
    }

    /// The messages for an operation that leaves something behind.
    std::string SaysOf(const std::function<void()>& leave)
    {
        return Says([&](OpenHandler& handler) {
            ReadTheCommandLine(handler);
            leave();
        });
    }

    Machine machine;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(Sweep, ReportsNothingIfNothingIsWrong)
{
    EXPECT_EQ(Says(ReadTheCommandLine), "");
    EXPECT_EQ(Says(ReadTheCommandLine, SweepAllocations), "");
}

TEST_F(Sweep, NamesALeakedHandleOfAnyKind)
{
    const std::string leaves = "command_line, when nothing fails, leaves behind: handles 1";
    EXPECT_THAT(SaysOf([] {
                    HKEY key = nullptr;
                    ::RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE", 0, KEY_READ, &key);
                }),
                HasSubstr(leaves));
    EXPECT_THAT(SaysOf([] {
                    static_cast<void>(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
                }),
                HasSubstr(leaves));
}

TEST_F(Sweep, DoesNotAddAHandleOfTheSystemsToALeak)
{
    int runs = 0;
    const std::string said = SaysOf([&] {
        const int left = ++runs % 2 == 0 ? 1 : 2; // each other run the system keeps one of its own
        for (int i = 0; i < left; ++i) {
            static_cast<void>(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
        }
    });
    EXPECT_THAT(said, HasSubstr("when nothing fails, leaves behind: handles 1"));
    EXPECT_THAT(said, Not(HasSubstr("handles 2")));
}

TEST_F(Sweep, NamesALeakedThread)
{
    letGo = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    lingering.clear();
    lingering.reserve(1'000); // before memory counts
    EXPECT_THAT(SaysOf(LeakAThread), HasSubstr("leaves behind: threads 1"));
    ::SetEvent(letGo);
    // In the next test their ends would count as threads that are missing.
    for (const DWORD id : lingering) {
        if (const HANDLE thread = ::OpenThread(SYNCHRONIZE, FALSE, id)) {
            ::WaitForSingleObject(thread, INFINITE);
            ::CloseHandle(thread);
        }
    }
    ::CloseHandle(letGo);
}

TEST_F(Sweep, NamesALeakedWindow)
{
    EXPECT_THAT(SaysOf([] {
                    ::CreateWindowExW(0, L"STATIC", L"left", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                      nullptr, nullptr);
                }),
                HasSubstr("leaves behind: windows "));
}

TEST_F(Sweep, NamesLeakedMemoryAndAChangedErrorModeFolderOrCom)
{
    std::vector<std::unique_ptr<int>> kept;
    kept.reserve(1'000);
    EXPECT_THAT(SaysOf([&] {
                    kept.push_back(std::make_unique<int>(1));
                }),
                HasSubstr("leaves behind: blocks of memory 1"));
    EXPECT_THAT(SaysOf([] {
                    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
                }),
                HasSubstr("leaves behind: another error mode"));
    EXPECT_THAT(SaysOf([] {
                    ::CoInitialize(nullptr);
                }),
                HasSubstr("leaves behind: COM initialised"));
}

TEST_F(Sweep, NamesAnUnexpectedOutcome)
{
    EXPECT_THAT(Says([](OpenHandler& handler) {
                    ReadTheCommandLine(handler);
                    Journal::Add(L"does more");
                }),
                HasSubstr("command_line: no failure"));
}

TEST_F(Sweep, NamesAnExpectedCallThatIsNotMade)
{
    const std::string said = Says([](OpenHandler&) {});
    EXPECT_THAT(
        said,
        HasSubstr("command_line's file lists a call that is not made: CommandLineToArgvW 1: no memory"));
    EXPECT_THAT(said, HasSubstr("command_line: the number of allocations"));
}

TEST_F(Sweep, NamesAnUnexpectedCall)
{
    EXPECT_THAT(Says([](OpenHandler& handler) {
                    ReadTheCommandLine(handler);
                    ReadTheCommandLine(handler);
                }),
                HasSubstr("command_line's file does not list CommandLineToArgvW 2: no memory"));
}

TEST_F(Sweep, NamesFewerAllocationsThanExpected)
{
    EXPECT_THAT(Says([](OpenHandler&) {}, SweepAllocations),
                HasSubstr("command_line: the number of allocations"));
}

TEST_F(Sweep, NamesAPairWhoseExceptionEscapes)
{
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &failures);
        SweepPairs(HandlerScene(machine, "organiser",
                                [](OpenHandler& handler) {
                                    appInfo_tag organiser;
                                    if (!handler.GetVel3Info(organiser)) {
                                        throw std::runtime_error("does not serve");
                                    }
                                    handler.StopVel3AutoLaunch();
                                }),
                   200);
    }
    ASSERT_GT(failures.size(), 0);
    EXPECT_THAT(std::string(failures.GetTestPartResult(0).message()),
                HasSubstr("THROWS ANOTHER EXCEPTION"));
}

} // namespace
} // namespace kestraboot::tests
