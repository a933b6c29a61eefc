// Every operation of the registry of applications, with each call that it makes failing in turn.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/handler_scene.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

class RegistryFaults : public testing::Test
{
protected:
    void SweepBoth(const std::string& name, const HandlerOperation& operation, bool loaded = false)
    {
        const Scene scene = HandlerScene(machine, name, operation, loaded);
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    Machine machine;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(RegistryFaults, OfLoading)
{
    SweepBoth("load_information", [](OpenHandler& handler) {
        handler.LoadInformation();
    });
}

TEST_F(RegistryFaults, OfTheQueries)
{
    SweepBoth(
        "queries",
        [](OpenHandler& handler) {
            std::vector<appInfo_tag> all;
            std::vector<appInfo_tag> defaults;
            appInfo_tag named;
            std::wstring name = L"Own";
            ShowAnswer(handler.GetAllApplicationInfo(all));
            ShowAnswer(handler.GetDefaultApplicationInfo(defaults));
            ShowAnswer(handler.GetApplicationInfo(name, named));
        },
        true);
}

TEST_F(RegistryFaults, OfMaintainingTheOrder)
{
    SweepBoth("maintain_order", [](OpenHandler& handler) {
        handler.MaintainOrder();
    });
}

TEST_F(RegistryFaults, OfMaintainingTheOrderWithoutApplications)
{
    machine.RemoveApplications();
    SweepBoth("no_application_left", [](OpenHandler& handler) {
        handler.MaintainOrder();
    });
}

TEST_F(RegistryFaults, OfReadingTheLaunchStatus)
{
    SweepBoth("get_launch_status", [](OpenHandler& handler) {
        ShowAnswer(handler.GetKestraLaunchStatus());
    });
}

TEST_F(RegistryFaults, OfWritingTheLaunchStatus)
{
    SweepBoth("set_launch_status", [](OpenHandler& handler) {
        ShowAnswer(handler.SetKestraLaunchStatus(7));
    });
}

TEST_F(RegistryFaults, OfReadingTheLocale)
{
    SweepBoth("get_locale", [](OpenHandler& handler) {
        std::wstring locale;
        ShowAnswer(handler.GetKestraLocaleString(locale));
        Journal::Add(L"locale", locale.c_str());
    });
}

Scene UninstallScene(Machine& machine)
{
    Scene scene = HandlerScene(machine, "uninstall", [](OpenHandler& handler) {
        handler.Uninstall();
    });
    for (const char* const call : {"K32EnumProcessModules", "TerminateProcess"}) {
        scene.kept.push_back({call, "handles 1", "the process that uninstalls ends soon after"});
    }
    return scene;
}

TEST_F(RegistryFaults, OfTheUninstall)
{
    const Scene scene = UninstallScene(machine);
    SweepFaults(scene);
    SweepAllocations(scene);
}

TEST_F(RegistryFaults, OfTheUninstallInPairs)
{
    Scene scene = UninstallScene(machine);
    for (const char* const call : {"K32EnumProcessModules", "TerminateProcess"}) {
        scene.kept.push_back({call, "handles 2", "where both failures are of these"});
    }
    for (const char* const call : {"GetModuleHandleW", "GetProcAddress", "LoadLibraryW"}) {
        scene.kept.push_back({call, "handles 1", "a path that can be read in neither of two ways"});
    }
    SweepPairs(scene, 500);
}

TEST_F(RegistryFaults, OfTheOrganiser)
{
    SweepBoth("organiser", [](OpenHandler& handler) {
        appInfo_tag organiser;
        ShowAnswer(handler.GetVel3Info(organiser));
        Journal::Add(L"proxy", organiser.ProxyPath.c_str());
        Journal::Add(L"description", organiser.Desc.c_str());
        handler.StartVel3AutoLaunch();
        handler.StopVel3AutoLaunch();
    });
}

} // namespace
} // namespace kestraboot::tests
