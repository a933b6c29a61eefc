// The roads of the WIA and the still-image tracker, from the thread's start to its end: two connect
// events of a camera, and two changes of the devices, of which the first brings a camera.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/still_imaging.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/trackers.h"
#include "tests/endurance/faults/wia_camera.h"

#include <gtest/gtest.h>

#include <dbt.h>

namespace kestraboot::tests
{
namespace
{

constexpr int kEvents = 2;

Tracker running = Tracker::Wia;
BSTR cameraName = nullptr;
int events = 0;

void ConnectCamera() noexcept
{
    if (WiaCamera::Callback() != nullptr) {
        const HRESULT result = WiaCamera::Callback()->ImageEventCallback(
            nullptr, nullptr, cameraName, nullptr, 0, nullptr, nullptr, 0);
        if (result != S_OK) {
            Journal::AddNumber(L"the event is answered", result);
        }
    }
}

BOOL TakeMessage(MSG* message, HWND, UINT, UINT) noexcept
{
    if (events++ == kEvents) {
        return FALSE;
    }
    if (running == Tracker::Wia) {
        ConnectCamera();
        message->message = WM_NULL;
    } else {
        StillImaging::PlugCamera(true);
        message->message = WM_DEVICECHANGE;
        message->wParam = DBT_DEVNODES_CHANGED;
    }
    return TRUE;
}

class ImagingAct final : public Act
{
public:
    ImagingAct(Machine& where, Tracker which) : machine(where), tracker(which) {}

    void Prepare() override
    {
        machine.Restore();
        running = tracker;
        events = 0;
        StillImaging::PlugCamera(false);
    }

    void Run() override
    {
        const Armed armed;
        Trackers::Run(tracker);
    }

    void ShowResults() override
    {
        WiaCamera::ShowReferences();
        StillImaging::ShowReferences();
    }

private:
    Machine& machine;
    Tracker tracker;
};

class ImagingFaults : public testing::Test
{
protected:
    ImagingFaults()
    {
        cameraName = ::SysAllocString(kCamera);
        PutText(HKEY_LOCAL_MACHINE,
                std::wstring(L"SYSTEM\\CurrentControlSet\\Control\\Class\\") + kCamera + L"\\DeviceData",
                L"TwainDS", kTwainSource);
    }
    ~ImagingFaults() override { ::SysFreeString(cameraName); }

    void SweepBoth(const char* name, Tracker tracker, const std::vector<Kept>& kept)
    {
        Scene scene = {name,
                       [this, tracker] {
                           return std::make_unique<ImagingAct>(machine, tracker);
                       },
                       machine.Folder()};
        scene.kept = kept;
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    Machine machine;
    WiaCamera wia;
    StillImaging stillImaging;
    ImportPatch get{"GetMessageW", TakeMessage};
    Trackers trackers;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(ImagingFaults, OfAConnectEvent)
{
    SweepBoth("wia", Tracker::Wia, {});
}

TEST_F(ImagingFaults, OfAStillImageDevice)
{
    SweepBoth("still_image", Tracker::StillImage,
              {{"", "windows 2", "those of the tracker, which runs until the process ends"},
               {"DSM_Entry.MSG_CLOSEDSM 2:", "TWAIN open", "the source manager refuses to close"}});
}

} // namespace
} // namespace kestraboot::tests
