// Planted faults of the kind that the other tests look for: each must be found. Code that was once in
// the product is among them.
#include "tests/endurance/interleavings/explore.h"
#include "tests/endurance/interleavings/host_in_scene.h"
#include "tests/endurance/interleavings/plugin_in_scene.h"

#include "foundation/error_mode.h"
#include "foundation/text.h"
#include "trackers/mox/plugin_list.h"

namespace kestraboot::interleavings
{
namespace
{

/// Kept the error mode before scopes were counted over all threads.
class ScopeOfOneThread
{
public:
    explicit ScopeOfOneThread(UINT mode) noexcept : previous(::SetErrorMode(mode)) {}
    ScopeOfOneThread(const ScopeOfOneThread&) = delete;
    ScopeOfOneThread& operator=(const ScopeOfOneThread&) = delete;
    ~ScopeOfOneThread() { ::SetErrorMode(previous); }

private:
    UINT previous;
};

/// A walk and a load, each under its flags. `looks`: checks the flags in the middle of each, not the
/// mode at the end.
template <typename Scope, bool looks>
class WalkBesideLoad : public Scene
{
public:
    WalkBesideLoad()
    {
        Begin("walk", SEM_FAILCRITICALERRORS);
        Begin("load", SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    }
    std::string Check() override { return looks ? "" : machine.Check(); }

private:
    void Begin(const std::string& name, UINT mode)
    {
        Scheduler::Current().Start(name, [this, name, mode] {
            const Scope scope(mode);
            if (looks) {
                machine.NeedsNoBoxes("the middle of the " + name, mode);
            }
        });
    }

    Machine machine;
};

/// Two locks, taken in two orders.
class TwoOrders : public Scene
{
public:
    TwoOrders()
    {
        for (const bool backwards : {false, true}) {
            Scheduler::Current().Start(backwards ? "backwards" : "forwards", [this, backwards] {
                SRWLOCK& first = backwards ? locks[1] : locks[0];
                SRWLOCK& second = backwards ? locks[0] : locks[1];
                ::AcquireSRWLockExclusive(&first);
                ::AcquireSRWLockExclusive(&second);
                ::ReleaseSRWLockExclusive(&second);
                ::ReleaseSRWLockExclusive(&first);
            });
        }
    }
    std::string Check() override { return machine.Check(); }

private:
    Machine machine;
    SRWLOCK locks[2] = {};
};

/// A dispatch without a lock, or one that reads its callback twice, or one that reports the callback
/// that it read before it had the lock.
enum class Dispatch { WithoutLock, LooksTwice, CountsFirst };

template <Dispatch how>
class BadDispatch : public Scene
{
public:
    BadDispatch()
    {
        for (const wchar_t* const device : {L"device 1", L"device 2"}) {
            Scheduler::Current().Start("tracker", [this, device] {
                Report(device);
            });
        }
        if (how == Dispatch::LooksTwice) {
            Scheduler::Current().Start("host", [this] {
                Scheduler::Running()->Point("registers no callback");
                registered = false;
            });
        }
    }
    std::string Check() override { return pending == 0 ? "" : "a report was lost"; }

private:
    void Report(const std::wstring& device)
    {
        if (how == Dispatch::CountsFirst) {
            const int before = pending; // of all trackers
            ::AcquireSRWLockExclusive(&lock);
            pending = before + 1;
            ::ReleaseSRWLockExclusive(&lock);
            ::AcquireSRWLockExclusive(&lock);
            --pending;
            ::ReleaseSRWLockExclusive(&lock);
            return;
        }
        if (!registered) {
            return;
        }
        Scheduler::Running()->Point("has seen a callback");
        if (!registered) {
            Scheduler::Running()->Fail("no callback is called");
        }
        if (inCallback) {
            Scheduler::Running()->Fail("two reports at once");
        }
        inCallback = how == Dispatch::WithoutLock;
        Scheduler::Running()->Point("gets a report");
        inCallback = false;
        static_cast<void>(device);
    }

    Machine machine;
    SRWLOCK lock = SRWLOCK_INIT;
    bool registered = true;
    bool inCallback = false;
    int pending = 0;
};

/// A callback that checks its lock only after the lock's deletion.
class DeletedTooEarly : public Scene
{
public:
    DeletedTooEarly()
    {
        ::InitializeCriticalSection(&lock);
        Scheduler::Current().Start("plugin", [this] {
            ::EnterCriticalSection(&lock);
            ::LeaveCriticalSection(&lock);
        });
        Scheduler::Current().Start("tracker", [this] {
            ::DeleteCriticalSection(&lock);
        });
    }
    std::string Check() override { return machine.Check(); }

private:
    Machine machine;
    CRITICAL_SECTION lock = {};
};

/// A plugin whose thread goes on when its library is freed.
class ThreadThatStays : public Scene
{
public:
    ThreadThatStays()
    {
        Scheduler::Current().Start("source", [this] {
            PluginList list;
            mox::PluginDescriptor wanted = {};
            CopyToField(wanted.modulePath, PluginInScene::PathOf(0));
            if (list.LoadPlugin(wanted) == mox::kSuccess) {
                plugin.RegisterCallback(&callback);
                plugin.UnregisterCallback(&callback);
                list.UnloadAllPlugins();
            }
        });
    }
    std::string Check() override { return machine.Check(); }

private:
    class NoCallback final : public mox::ICallbackInterface
    {
    public:
        virtual ~NoCallback() = default;
        bool Query(mox::InterfaceNumber, void**) override { return false; }
        std::uint32_t AddReference() override { return 1; }
        std::uint32_t Release() override { return 1; }
        mox::Status Notify(std::uint64_t, const mox::DeviceRecord*) override { return mox::kSuccess; }
    };

    Machine machine;
    PluginInScene plugin{machine, 0, 1, EndsThread::Never};
    NoCallback callback;
};

void ExpectFound(const Outcome& outcome, const std::string& failure)
{
    EXPECT_TRUE(outcome.Holds(failure)) << "found: '" << outcome.failure << "'";
    std::printf("    found in schedule %ld: %s\n%s", outcome.schedules, outcome.failure.c_str(),
                outcome.schedule.c_str());
}

using OldWalk = WalkBesideLoad<ScopeOfOneThread, false>;
using OldWalkLookedAt = WalkBesideLoad<ScopeOfOneThread, true>;
using NewWalk = WalkBesideLoad<ErrorModeScope, false>;
using NewWalkLookedAt = WalkBesideLoad<ErrorModeScope, true>;

TEST(PlantedFaults, OfTheOldErrorModeAreFound)
{
    ExpectFound(FindFailure<OldWalk>(2), "the error mode stays 0x1, and was 0x2");
}

TEST(PlantedFaults, OfTheOldErrorModeAreFoundInTheMiddleOfALoad)
{
    ExpectFound(FindFailure<OldWalkLookedAt>(2), "which lacks flags of");
}

TEST(PlantedFaults, OfTheOldErrorModeNeedTwoPreemptions)
{
    EXPECT_EQ(FindFailure<OldWalk>(1).failure, "");
}

TEST(PlantedFaults, AreNotInThePresentErrorMode)
{
    GoesWellInEverySchedule<NewWalk>(4);
    GoesWellInEverySchedule<NewWalkLookedAt>(4);
}

TEST(PlantedFaults, OfTwoLocksInTwoOrdersAreFound)
{
    ExpectFound(FindFailure<TwoOrders>(1), "nobody can go on: ");
}

TEST(PlantedFaults, OfADispatchWithoutALockAreFound)
{
    ExpectFound(FindFailure<BadDispatch<Dispatch::WithoutLock>>(1), "two reports at once");
}

TEST(PlantedFaults, OfACallbackThatIsReadTwiceAreFound)
{
    ExpectFound(FindFailure<BadDispatch<Dispatch::LooksTwice>>(1), "no callback is called");
}

TEST(PlantedFaults, OfACountThatIsReadBeforeTheLockAreFound)
{
    ExpectFound(FindFailure<BadDispatch<Dispatch::CountsFirst>>(2), "a report was lost");
}

TEST(PlantedFaults, OfALockThatIsDeletedTooEarlyAreFound)
{
    ExpectFound(FindFailure<DeletedTooEarly>(0), "is taken after it was deleted");
}

TEST(PlantedFaults, OfAThreadThatOutlivesItsLibraryAreFound)
{
    ExpectFound(FindFailure<ThreadThatStays>(1), "of a plugin whose library was freed");
}

} // namespace
} // namespace kestraboot::interleavings
