#include "foundation/error_mode.h"
#include "tests/support/import_patch.h"
#include "tests/support/signal.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace kestraboot
{
namespace
{

constexpr UINT kOfTheHost = SEM_NOGPFAULTERRORBOX;
constexpr UINT kOfAWalk = SEM_FAILCRITICALERRORS;                          // 1
constexpr UINT kOfALoad = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX; // 0x8001

/// A thread that enters and leaves a scope on the test's command.
class OtherThread
{
public:
    explicit OtherThread(UINT mode)
        : thread([this, mode] {
              toEnter.Wait();
              std::optional<ErrorModeScope> scope(mode);
              entered.Set();
              toLeave.Wait();
              scope.reset();
              left.Set();
          })
    {
    }

    void Enter()
    {
        toEnter.Set();
        entered.Wait();
    }

    void Leave()
    {
        toLeave.Set();
        left.Wait();
    }

    ~OtherThread() { thread.join(); }

private:
    tests::Signal toEnter;
    tests::Signal entered;
    tests::Signal toLeave;
    tests::Signal left;
    std::thread thread;
};

class ErrorMode : public testing::Test
{
protected:
    ErrorMode() : modeOfTheTest(::SetErrorMode(kOfTheHost)) {}
    ~ErrorMode() override { ::SetErrorMode(modeOfTheTest); }

private:
    UINT modeOfTheTest;
};

TEST_F(ErrorMode, IsSetWithinTheScopeAndRestoredAfterIt)
{
    {
        const ErrorModeScope scope(kOfAWalk);
        EXPECT_EQ(::GetErrorMode(), kOfAWalk) << "the previous mode is not part of it";
    }
    EXPECT_EQ(::GetErrorMode(), kOfTheHost);
}

TEST_F(ErrorMode, OfNestedScopesIsSetAndRestoredStepByStep)
{
    std::vector<UINT> set;
    const FAKE_IMPORT(SetErrorMode) sets([&](UINT mode) {
        set.push_back(mode);
        return sets.CallOriginal(mode);
    });
    {
        const ErrorModeScope outer(kOfAWalk);
        const ErrorModeScope inner(kOfALoad);
    }
    EXPECT_EQ(set, (std::vector<UINT>{1, 0x8001, 1, kOfTheHost}));
    set.clear();
    {
        const ErrorModeScope outer(kOfAWalk);
        const ErrorModeScope inner(kOfAWalk);
    }
    EXPECT_EQ(set, (std::vector<UINT>{1, 1, 1, kOfTheHost}));
}

TEST_F(ErrorMode, IsRestoredByTheLastOfTwoThreads)
{
    OtherThread walk(kOfAWalk);
    OtherThread load(kOfALoad);
    walk.Enter();
    EXPECT_EQ(::GetErrorMode(), kOfAWalk);
    load.Enter();
    EXPECT_EQ(::GetErrorMode(), kOfALoad);
    walk.Leave();
    EXPECT_EQ(::GetErrorMode(), kOfALoad) << "boxes are allowed in the middle of a load";
    load.Leave();
    EXPECT_EQ(::GetErrorMode(), kOfTheHost) << "a mode of the library itself stays set";
}

TEST_F(ErrorMode, OfAWalkOutlivesTheLoadThatBeganBeforeIt)
{
    OtherThread load(kOfALoad);
    OtherThread walk(kOfAWalk);
    load.Enter();
    walk.Enter();
    EXPECT_EQ(::GetErrorMode(), kOfALoad) << "a load in progress needs both flags";
    load.Leave();
    EXPECT_EQ(::GetErrorMode(), kOfAWalk) << "boxes are allowed in the middle of a walk";
    walk.Leave();
    EXPECT_EQ(::GetErrorMode(), kOfTheHost);
}

TEST_F(ErrorMode, IsReadAgainByTheFirstScopeAfterTheLast)
{
    {
        const ErrorModeScope scope(kOfAWalk);
    }
    ::SetErrorMode(SEM_NOOPENFILEERRORBOX); // the host sets another mode
    {
        const ErrorModeScope scope(kOfALoad);
    }
    EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOOPENFILEERRORBOX));
}

TEST_F(ErrorMode, OfManyThreadsAlwaysHasTheirFlags)
{
    constexpr int kScopes = 2'000;
    std::vector<std::thread> threads;
    for (const UINT mode : {kOfAWalk, kOfALoad, kOfAWalk, kOfALoad}) {
        threads.emplace_back([mode] {
            for (int i = 0; i < kScopes; ++i) {
                const ErrorModeScope scope(mode);
                EXPECT_EQ(::GetErrorMode() & mode, mode);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(::GetErrorMode(), kOfTheHost);
}

} // namespace
} // namespace kestraboot
