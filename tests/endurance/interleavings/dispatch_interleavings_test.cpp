// Trackers that report at the same time, and a host that exchanges its callback meanwhile.
#include "tests/endurance/interleavings/explore.h"
#include "tests/endurance/interleavings/host_in_scene.h"

#include "service/dispatch.h"

namespace kestraboot::interleavings
{
namespace
{

/// Trackers, each with this number of reports.
class Trackers : public Scene
{
public:
    Trackers(int trackers, int reports)
    {
        InitializeDispatch();
        for (int tracker = 0; tracker < trackers; ++tracker) {
            for (int report = 0; report < reports; ++report) {
                devices.push_back(Device(tracker, report));
            }
            Scheduler::Current().Start("tracker " + std::to_string(tracker), [this, tracker, reports] {
                for (int report = 0; report < reports; ++report) {
                    host.Report(Device(tracker, report));
                }
            });
        }
    }

    std::string Check() override
    {
        const std::string wrong = machine.Check();
        return wrong.empty() ? host.Check(devices) : wrong;
    }

protected:
    static std::wstring Device(int tracker, int report)
    {
        return L"device " + std::to_wstring(tracker) + L'.' + std::to_wstring(report);
    }

    Machine machine;
    HostInScene host;
    std::vector<std::wstring> devices;
};

class ThreeTrackers : public Trackers
{
public:
    ThreeTrackers() : Trackers(3, 2) {}
};

class ThrowingHost : public Trackers
{
public:
    ThrowingHost() : Trackers(2, 2) { host.aDoes = HostInScene::Does::Throws; }
};

class ExchangeByTheHost : public Trackers
{
public:
    ExchangeByTheHost() : Trackers(2, 2)
    {
        Scheduler::Current().Start("host", [this] {
            Scheduler::Running()->Point("exchanges the callback");
            host.RegisterB();
            Scheduler::Running()->Point("has exchanged the callback");
        });
    }
};

class ExchangeInTheCallback : public Trackers
{
public:
    ExchangeInTheCallback() : Trackers(3, 1) { host.aDoes = HostInScene::Does::RegistersB; }

    std::string Check() override
    {
        const std::string wrong = Trackers::Check();
        if (!wrong.empty()) {
            return wrong;
        }
        for (std::size_t i = 0; i < host.told.size(); ++i) {
            if (host.told[i].first != (i == 0 ? 'A' : 'B')) {
                return "a report waited for the lock, and went to the callback that was replaced "
                       "meanwhile";
            }
        }
        return {};
    }
};

TEST(DispatchInterleavings, OfThreeTrackersLoseAndRepeatNoReport)
{
    GoesWellInEverySchedule<ThreeTrackers>();
}

TEST(DispatchInterleavings, OfAHostThatThrowsKeepNoLock)
{
    GoesWellInEverySchedule<ThrowingHost>();
}

TEST(DispatchInterleavings, OfAReplacedCallbackSendEachReportToOneCallback)
{
    GoesWellInEverySchedule<ExchangeByTheHost>();
}

TEST(DispatchInterleavings, OfACallbackThatReplacesItselfSendEachReportToOneCallback)
{
    GoesWellInEverySchedule<ExchangeInTheCallback>();
}

} // namespace
} // namespace kestraboot::interleavings
