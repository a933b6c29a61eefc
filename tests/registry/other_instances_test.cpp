#include "registry/other_instances.h"

#include "tests/registry/fake_processes.h"
#include "tests/support/handle_count.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

const std::wstring kOwnPath = L"C:\\Own\\kestraboot.exe";
using Events = std::vector<std::wstring>;
using Ids = std::set<DWORD>;

bool Stop(const std::wstring& ownPath = kOwnPath)
{
    return StopOtherInstances(::GetCurrentProcessId(), ownPath);
}

TEST(OtherInstances, AreNoneIfOnlyOtherProgramsRun)
{
    FakeProcesses machine({{5, L"C:\\other.exe"}, {7, L"C:\\Own\\kestraboot.exe2"}});
    EXPECT_FALSE(Stop());
    EXPECT_EQ(machine.events, Events{});
    EXPECT_EQ(machine.LeftOpen(), Ids{});
    EXPECT_TRUE(machine.SnapshotClosed());
}

TEST(OtherInstances, AreAskedToQuitAndTerminatedTwoSecondsLater)
{
    FakeProcesses machine({{5, L"C:\\other.exe"}, {7, kOwnPath}});
    EXPECT_TRUE(Stop());
    EXPECT_EQ(machine.events, (Events{L"ask windows", L"wait 2000", L"end 7 with 0"}));
    EXPECT_EQ(machine.LeftOpen(), Ids{7}); // so that nobody gets its identifier
    EXPECT_TRUE(machine.SnapshotClosed());
}

TEST(OtherInstances, AreStoppedOneAfterAnother)
{
    FakeProcesses machine({{5, kOwnPath}, {6, L"C:\\other.exe"}, {7, kOwnPath}});
    EXPECT_TRUE(Stop());
    EXPECT_EQ(machine.events, (Events{L"ask windows", L"wait 2000", L"end 5 with 0", L"ask windows",
                                      L"wait 2000", L"end 7 with 0"}));
    EXPECT_EQ(machine.LeftOpen(), (Ids{5, 7}));
}

TEST(OtherInstances, AreFoundEvenIfOtherProgramsFollow)
{
    FakeProcesses machine({{5, kOwnPath}, {6, L"C:\\other.exe"}});
    EXPECT_TRUE(Stop()); // the last process of the list is another program
}

TEST(OtherInstances, AreKnownByTheirPathInAnyCase)
{
    FakeProcesses machine({{5, L"c:\\OWN\\KestraBoot.EXE"}});
    EXPECT_TRUE(Stop());
}

TEST(OtherInstances, ThatCannotBeOpenedAreSkipped)
{
    FakeProcesses machine({{5, kOwnPath, false}, {7, kOwnPath}});
    EXPECT_TRUE(Stop());
    EXPECT_EQ(machine.events, (Events{L"ask windows", L"wait 2000", L"end 7 with 0"}));
}

TEST(OtherInstances, ThatCannotBeInspectedAreSkippedAndTheirHandlesStayOpen)
{
    FakeProcesses machine({{5, kOwnPath, true, false}, {6, L"C:\\other.exe"}});
    EXPECT_FALSE(Stop());
    EXPECT_EQ(machine.events, Events{});
    EXPECT_EQ(machine.LeftOpen(), Ids{5});
}

TEST(OtherInstances, DoNotIncludeTheRunningProcess)
{
    FakeProcesses machine({});
    EXPECT_FALSE(Stop());
    EXPECT_EQ(machine.LeftOpen(), Ids{});
}

TEST(OtherInstances, AreNoneIfTheOwnPathIsUnknown)
{
    FakeProcesses machine({{5, L""}}, L"");
    EXPECT_FALSE(Stop(L""));
    EXPECT_EQ(machine.events, Events{});
}

TEST(OtherInstances, AreNoneWithoutASnapshot)
{
    FakeProcesses machine({{5, kOwnPath}});
    machine.snapshotWorks = false;
    EXPECT_FALSE(Stop());
    EXPECT_FALSE(machine.SnapshotClosed());
}

TEST(OtherInstances, OfAProgramThatRunsOnceAreNoneOnTheRealMachine)
{
    const auto stop = [] {
        EXPECT_FALSE(Stop(L"C:\\no such folder\\kestraboot.exe"));
    };
    // The product leaves the handles of processes that cannot be queried open, because it exits soon.
    // Wine has no such process.
    EXPECT_EQ(HandlesLeftBy(stop), 0);
}

} // namespace
} // namespace kestraboot
