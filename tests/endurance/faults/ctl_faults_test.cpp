// kestractl's own calls: a report, and a check, of a small installation.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/ctl_world.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/tool_program.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestraboot::tests
{
namespace
{

class CtlAct final : public Act
{
public:
    CtlAct(const CtlWorld& where, const ToolProgram& what) : world(where), program(what) {}
    ~CtlAct() override { world.Restore(); }

    void Prepare() override { world.Restore(); }
    void Run() override { program.Run(); }
    void ShowResults() override { world.ShowLeftovers(); }

private:
    const CtlWorld& world;
    const ToolProgram& program;
};

void SweepBoth(const char* name, const CtlWorld& world, const ToolProgram& program,
               const std::vector<Kept>& kept = {})
{
    const CallGate gate(program.Module(), LetCallGoOn);
    Scene scene = {name,
                   [&] {
                       return std::make_unique<CtlAct>(world, program);
                   },
                   world.Folder()};
    scene.kept = kept;
    scene.days = 28;
    SweepFaults(scene);
    SweepAllocations(scene);
}

TEST(CtlFaults, OfAReport)
{
    const ToolProgram program(L"ctl_program.dll");
    CtlWorld world;
    world.InstallAnApplication();
    world.LeaveACopyBehind();
    SweepBoth("ctl_report", world, program);
}

/// Without an application, whose keys take most of the time: the report has them.
TEST(CtlFaults, OfACheck)
{
    ToolProgram program(L"ctl_program.dll");
    program.SetArguments({L"--check"});
    CtlWorld world;
    world.PutFiles();
    SweepBoth("ctl_check", world, program);
}

TEST(CtlFaults, OfACheckWithoutAWindowInControl)
{
    ToolProgram program(L"ctl_program.dll");
    program.SetArguments({L"--check"});
    const CtlWorld world;
    SweepBoth("ctl_check_processes", world, program);
}

} // namespace
} // namespace kestraboot::tests
