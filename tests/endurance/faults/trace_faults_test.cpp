// kestratrace's own calls: live lines on a console, the same with a file that is rotated, and a
// recording. The calls of the thread that reads the lines are swept too.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/tool_program.h"
#include "tests/endurance/faults/trace_world.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestraboot::tests
{
namespace
{

class TraceAct final : public Act
{
public:
    TraceAct(const TraceWorld& where, const ToolProgram& what, bool hasFile)
        : world(where), program(what), file(hasFile)
    {
    }

    void Prepare() override { world.Restore(); }
    void Run() override
    {
        program.Run();
        world.EndProcess();
    }
    void ShowResults() override
    {
        if (file) {
            world.ShowRecorded();
        }
    }

private:
    const TraceWorld& world;
    const ToolProgram& program;
    const bool file;
};

class TraceFaults : public testing::Test
{
protected:
    void SweepBoth(const char* name, const std::vector<std::wstring>& arguments, bool hasFile = false)
    {
        program.SetArguments(arguments);
        const CallGate gate(program.Module(), LetCallGoOn);
        Scene scene = {name,
                       [&] {
                           return std::make_unique<TraceAct>(world, program, hasFile);
                       },
                       world.Folder()};
        scene.days = 14;
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    ToolProgram program{L"trace_program.dll"};
    TraceWorld world;
};

TEST(FailureTable, KnowsEveryFunctionThatTheToolsImport)
{
    for (const wchar_t* const library : {L"ctl_program.dll", L"trace_program.dll"}) {
        const ToolProgram tool(library);
        const CallGate gate(tool.Module(), LetCallGoOn);
        EXPECT_GT(gate.Slots().size(), 80U);
        for (const CallGate::Slot& slot : gate.Slots()) {
            EXPECT_NE(slot.failures, nullptr)
                << slot.function << " is new: add its failures to FailureTable() in failure_table.cpp, "
                << "or its name to kCannotFail there";
        }
    }
}

TEST_F(TraceFaults, OfLiveLines)
{
    ToolProgram::SetConsole(true);
    SweepBoth("trace_live", {});
}

TEST_F(TraceFaults, OfLiveLinesInAFile)
{
    SweepBoth("trace_recording", {L"--file", world.Recorded(), L"--rotate", L"4096", L"--keep", L"1"},
              true);
}

TEST_F(TraceFaults, OfARecording)
{
    SweepBoth("trace_read_back", {L"--from", world.Recording()});
}

} // namespace
} // namespace kestraboot::tests
