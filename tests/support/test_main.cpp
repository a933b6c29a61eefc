// The main program of every test executable: a guarded heap if requested, no error boxes, a watchdog for
// a test that hangs, and no end of the process before the end of the tests.
#include "tests/support/guarded_heap.h"
#include "tests/support/import_patch.h"
#include "tests/support/run_in_child.h"
#include "tests/support/watchdog.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace
{

/// Milliseconds that a test may take: a minute, or the number of seconds in KESTRABOOT_LONGEST_TEST.
DWORD LongestTest()
{
    const char* const asked = std::getenv("KESTRABOOT_LONGEST_TEST");
    return (asked != nullptr ? static_cast<DWORD>(std::strtoul(asked, nullptr, 10)) : 60) * 1000;
}

HANDLE timer = nullptr; // of the test that runs

class Watchdog : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(const testing::TestInfo& test) override
    {
        // GoogleTest sets the process error mode, which would hide that a product does not set it.
        ::SetErrorMode(0);
        std::snprintf(name, sizeof name, "%s.%s", test.test_suite_name(), test.name());
        ::CreateTimerQueueTimer(&timer, nullptr, Bark, this, LongestTest(), 0, WT_EXECUTEONLYONCE);
    }

    void OnTestEnd(const testing::TestInfo&) override
    {
        ::DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);
        timer = nullptr;
    }

private:
    static void CALLBACK Bark(void* self, BOOLEAN)
    {
        std::printf("%s hangs: terminated by the watchdog\n", static_cast<Watchdog*>(self)->name);
        std::fflush(stdout);
        ::TerminateProcess(::GetCurrentProcess(), 99);
    }

    char name[256] = {};
};

void EndedByTheProduct(UINT exitCode)
{
    std::printf("the code under test exited with code %u\n", exitCode);
    std::fflush(stdout);
    ::TerminateProcess(::GetCurrentProcess(), 98);
}

/// The product ends a process with exit code 0, which would look as if every test had passed.
std::unique_ptr<kestraboot::tests::ImportPatch> KeepRunning()
{
    if (kestraboot::tests::IsChild()) {
        return nullptr; // this process is meant to end
    }
    try {
        return std::make_unique<kestraboot::tests::ImportPatch>(
            "ExitProcess", reinterpret_cast<void*>(&EndedByTheProduct));
    } catch (const std::logic_error&) {
        return nullptr; // nothing in this executable can do that
    }
}

} // namespace

void kestraboot::tests::RestartWatchdog()
{
    ::ChangeTimerQueueTimer(nullptr, timer, LongestTest(), 0);
}

int main(int argc, char** argv)
{
    kestraboot::tests::GuardHeapIfAsked();
    testing::InitGoogleTest(&argc, argv);
    const auto kept = KeepRunning();
    testing::UnitTest::GetInstance()->listeners().Append(new Watchdog); // GoogleTest owns it
    const int result = RUN_ALL_TESTS();
    std::fflush(stdout);
    return result;
}
