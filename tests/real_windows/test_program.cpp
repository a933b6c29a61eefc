#include "tests/real_windows/test_program.h"

#include "tests/real_windows/limited_process.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace kestraboot::real_windows
{
namespace
{

constexpr DWORD kBetweenLooks = 200; // milliseconds
/// Seconds: within the longest test the watchdog of the tests terminates the program and names the test.
constexpr int kWatchdogsTurn = 10;

/// The end of a run of the program.
struct Run {
    std::filesystem::path outputFile;
    TestOutput output;
    bool hung = false;
    DWORD exitCode = 0;
    long long millisecondsOfLast = 0; ///< since the last test began or ended
};

std::string EndOf(const Run& run, int longestTest)
{
    if (run.hung) {
        return "hangs: no output for " + std::to_string(longestTest + kWatchdogsTurn) +
               " seconds; it was terminated with all the processes that it had started";
    }
    static constexpr struct {
        DWORD code;
        const char* meaning;
    } kKnown[] = {{0xC0000005, "access violation"},
                  {0xC0000135, "a DLL was not found"},
                  {0xC0000139, "a DLL lacks an imported function"},
                  {0xC0000374, "the heap was damaged"},
                  {0xC0000409, "the stack was damaged, or an abort"},
                  {0xC00000FD, "stack overflow"},
                  {3, "abort"},
                  {97, "terminated by another process"},
                  {98, "the code under test exited"},
                  {99, "hangs: terminated by the watchdog"}};
    char code[32] = {};
    std::snprintf(code, sizeof code, run.exitCode > 0xFFFF ? "0x%08lX" : "%lu", run.exitCode);
    std::string text = "the program exited with code " + std::string(code);
    for (const auto& known : kKnown) {
        if (known.code == run.exitCode) {
            text += std::string(" (") + known.meaning + ')';
        }
    }
    return text;
}

Run RunOnce(const Program& program, const Places& places, const std::wstring& arguments,
            const std::function<void(const TestOutput&)>& moved)
{
    Run run;
    // Another file each time, because a scanner or the last run's leftover may hold that one for a
    // moment.
    static int count = 0;
    run.outputFile = places.scratch / ("output-" + std::to_string(++count) + ".txt");
    LimitedProcess process(places.programs / (program.path + ".exe"), arguments, places.scratch,
                           run.outputFile);
    ULONGLONG last = ::GetTickCount64();
    const ULONGLONG longest = static_cast<ULONGLONG>(places.longestTest + kWatchdogsTurn) * 1000;
    for (bool ended = false; !ended && !run.hung;) {
        ended = process.Ended(kBetweenLooks);
        if (run.output.Add(process.MoreOutput())) {
            last = ::GetTickCount64();
            moved(run.output);
        }
        run.millisecondsOfLast = static_cast<long long>(::GetTickCount64() - last);
        run.hung = !ended && ::GetTickCount64() - last > longest;
    }
    run.exitCode = process.ExitCode();
    return run;
}

/// The tests of one program that are still to be run, and the results so far.
class TestsOfAProgram
{
public:
    TestsOfAProgram(const Program& whose, const Places& where, const Progress& tell)
        : program(whose), places(where), progress(tell)
    {
    }

    std::vector<TestResult> Run()
    {
        try {
            List();
            Skip();
            while (!remaining.empty()) {
                RunRemaining();
            }
        } catch (const std::runtime_error& error) {
            GiveUp(error.what());
        }
        // The result of the program itself comes first.
        std::ranges::stable_sort(results, {}, [this](const TestResult& result) {
            const auto place = std::ranges::find(all, result.name);
            return place == all.end() ? 0 : place - all.begin() + 1;
        });
        return results;
    }

private:
    void List()
    {
        std::string listed;
        const auto run = RunOnce(program, places, L"--gtest_list_tests", [](const TestOutput&) {});
        if (run.hung || run.exitCode != 0) {
            throw std::runtime_error("its tests cannot be listed: " + EndOf(run, places.longestTest) +
                                     '\n' + run.output.OutsideOfTests());
        }
        std::ifstream in(run.outputFile);
        all = ListedTests({std::istreambuf_iterator<char>(in), {}});
        if (all.empty()) {
            throw std::runtime_error("it lists no test");
        }
        remaining = all;
    }

    void Skip()
    {
        for (const SkippedTests& skipped : program.skipped) {
            const auto matching = [&](const std::string& name) {
                return Matches(skipped.pattern, name);
            };
            if (std::ranges::none_of(all, matching)) {
                AddFailure("(the program)", "has no test to skip by the name " + skipped.pattern);
            }
            for (const std::string& name : remaining) {
                if (matching(name)) {
                    results.push_back({name, Outcome::Skipped, 0, skipped.reason});
                }
            }
            std::erase_if(remaining, matching);
        }
    }

    void RunRemaining()
    {
        // In a file, because a command line would be too short for the names.
        std::string filter;
        for (const std::string& name : remaining) {
            filter += (filter.empty() ? "" : ":") + name;
        }
        std::ofstream(places.scratch / "filter.txt") << "--gtest_filter=" << filter << '\n';
        const std::vector<TestResult> before = results;
        const auto run = RunOnce(program, places, L"--gtest_flagfile=filter.txt --gtest_color=no",
                                 [&](const TestOutput& output) {
                                     results = before;
                                     TakeFinished(output);
                                     progress(all.size(), results);
                                 });
        results = before;
        TakeFinished(run.output);
        const std::string end = EndOf(run, places.longestTest);
        if (run.output.Running()) {
            TestResult last = *run.output.Running();
            last.milliseconds = run.millisecondsOfLast;
            last.text = end + '\n' + last.text;
            results.push_back(last);
        }
        const std::size_t begun = results.size() - before.size();
        for (std::size_t i = before.size(); i < results.size(); ++i) {
            std::erase(remaining, results[i].name);
        }
        if (begun == 0) {
            throw std::runtime_error(end + '\n' + run.output.OutsideOfTests());
        }
        CheckEnd(run, end, before.size());
    }

    /// A program that ran all its tests reports it, and its exit code shows whether one failed.
    void CheckEnd(const real_windows::Run& run, const std::string& end, std::size_t first)
    {
        if (!remaining.empty() || run.output.Running()) {
            return;
        }
        const bool failed = std::any_of(results.begin() + static_cast<std::ptrdiff_t>(first),
                                        results.end(), [](const TestResult& result) {
                                            return result.outcome == Outcome::Failed;
                                        });
        if (!run.output.IsThrough() || run.hung || run.exitCode != (failed ? 1U : 0U)) {
            AddFailure("(the program)", "after its last test: " + end);
        }
    }

    void TakeFinished(const TestOutput& output)
    {
        results.insert(results.end(), output.Finished().begin(), output.Finished().end());
    }

    void GiveUp(const std::string& why)
    {
        AddFailure("(the program)", why);
        for (const std::string& name : remaining) {
            AddFailure(name, "was not run, because of what is said of the program");
        }
        remaining.clear();
    }

    void AddFailure(const std::string& name, const std::string& text)
    {
        results.push_back({name, Outcome::Failed, 0, text});
    }

    const Program& program;
    const Places& places;
    const Progress& progress;
    std::vector<std::string> all;
    std::vector<std::string> remaining;
    std::vector<TestResult> results;
};

} // namespace

std::vector<TestResult> RunTestProgram(const Program& program, const Places& places,
                                       const Progress& progress)
{
    return TestsOfAProgram(program, places, progress).Run();
}

} // namespace kestraboot::real_windows
