// Every operation of the launcher, with each call that it makes failing in turn.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/handler_scene.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

class LauncherFaults : public testing::Test
{
protected:
    void SweepBoth(const std::string& name, const HandlerOperation& operation)
    {
        const Scene scene = HandlerScene(machine, name, operation);
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    Machine machine;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
    std::wstring mode = L"direct";
    std::wstring type = L"volume";
    std::wstring id = L"E:";
};

TEST_F(LauncherFaults, OfTheCommandLine)
{
    SweepBoth("command_line", [](OpenHandler& handler) {
        std::vector<std::wstring> words;
        handler.ParseCommandLineParameter(words);
        for (const std::wstring& word : words) {
            Journal::Add(L"word", word.c_str());
        }
    });
}

TEST_F(LauncherFaults, OfMakingADefault)
{
    SweepBoth("set_default", [](OpenHandler& handler) {
        std::wstring name = L"Viewer";
        std::wstring value = L"yes";
        ShowAnswer(handler.SetApplicationDefaultStatus(name, value));
    });
}

TEST_F(LauncherFaults, OfClearingADefault)
{
    SweepBoth("take_default_back", [](OpenHandler& handler) {
        std::wstring name = L"Own";
        std::wstring value = L"no";
        ShowAnswer(handler.SetApplicationDefaultStatus(name, value));
    });
}

TEST_F(LauncherFaults, OfRefusingADefault)
{
    SweepBoth("refuse_default", [](OpenHandler& handler) {
        std::wstring name = L"Nobody";
        std::wstring value = L"yes";
        ShowAnswer(handler.SetApplicationDefaultStatus(name, value));
    });
}

TEST_F(LauncherFaults, OfTakingControl)
{
    SweepBoth("take_control", [](OpenHandler& handler) {
        ShowAnswer(handler.TakeControl());
    });
}

TEST_F(LauncherFaults, OfTakingControlWithAnOemFile)
{
    machine.PutOemFile("Stop=1");
    SweepBoth("take_control_oem", [](OpenHandler& handler) {
        ShowAnswer(handler.TakeControl());
    });
}

TEST_F(LauncherFaults, OfTakingControlWithAnOemFileThatStopsIt)
{
    machine.PutOemFile("1");
    SweepBoth("take_control_oem_stops", [](OpenHandler& handler) {
        ShowAnswer(handler.TakeControl());
    });
}

TEST_F(LauncherFaults, OfALaunch)
{
    SweepBoth("launch", [this](OpenHandler& handler) {
        std::wstring path = L"C:\\Apps\\viewer.exe";
        handler.LaunchKestra(path, mode, type, id);
    });
}

TEST_F(LauncherFaults, OfALaunchWithoutADevice)
{
    SweepBoth("launch_without_device", [this](OpenHandler& handler) {
        std::wstring path = L"C:\\Apps\\viewer.exe";
        std::wstring none;
        handler.LaunchKestra(path, mode, type, none);
    });
}

TEST_F(LauncherFaults, OfALaunchOnWindows2000)
{
    const WindowsVersion version(5, 0);
    SweepBoth("launch_on_2000", [this](OpenHandler& handler) {
        std::wstring path = L"C:\\Apps\\viewer.exe";
        handler.LaunchKestra(path, mode, type, id);
    });
}

TEST_F(LauncherFaults, OfTheDefaultLaunch)
{
    SweepBoth("launch_default", [this](OpenHandler& handler) {
        handler.LaunchDefaultKestra(type, id);
    });
}

TEST_F(LauncherFaults, OfTheOwnLaunch)
{
    SweepBoth("launch_own", [this](OpenHandler& handler) {
        handler.LaunchOwnKestra(mode, type, id);
    });
}

TEST_F(LauncherFaults, OfTheOrganisersProxy)
{
    SweepBoth("launch_organiser", [this](OpenHandler& handler) {
        std::wstring path = L"C:\\Legacy\\VelProxy.exe";
        handler.LaunchVel3Proxy(path, type, id);
    });
}

TEST_F(LauncherFaults, OfALaunchInPairs)
{
    SweepPairs(HandlerScene(machine, "launch_default",
                            [this](OpenHandler& handler) {
                                handler.LaunchDefaultKestra(type, id);
                            }),
               500);
}

TEST_F(LauncherFaults, OfTakingControlInPairs)
{
    machine.PutOemFile("Stop=1");
    SweepPairs(HandlerScene(machine, "take_control_oem",
                            [](OpenHandler& handler) {
                                ShowAnswer(handler.TakeControl());
                            }),
               600);
}

} // namespace
} // namespace kestraboot::tests
