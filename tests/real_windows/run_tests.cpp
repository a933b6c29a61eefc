// Runs the test programs of the archive on the machine on which it was unpacked, and writes the results.
// Linked only with Windows, because it must start even if the programs do not.
#include "kestraboot/version.h"
#include "tests/real_windows/report.h"
#include "tests/real_windows/screen.h"
#include "tests/real_windows/test_program.h"
#include "tests/real_windows/this_machine.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace kestraboot::real_windows;

constexpr int kAllPassed = 0;
constexpr int kSomeFailed = 1;
constexpr int kCouldNotRun = 2;

/// The tests' own key below HKEY_CURRENT_USER.
constexpr const wchar_t* kOwnKey = L"Software\\KestrabootTests";

/// The product cuts a path at 259 characters; the tests' own folders and files need the rest.
constexpr std::size_t kLongestFolder = 120;

constexpr const char* kUsage =
    "run-tests.cmd [--no-pause] [--only PROGRAM]... [--longest-test SECONDS]\n"
    "\n"
    "--no-pause      do not wait for a key at the end\n"
    "--only          that program of bin\\programs.txt alone; can be given several times\n"
    "--longest-test  a test that takes longer has failed (180)\n";

struct Options {
    bool help = false;
    std::vector<std::string> only;
    int longestTest = 180;
};

/// Throws std::invalid_argument for an argument that it does not understand.
Options Understand(int argc, wchar_t** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::wstring word = argv[i];
        const std::wstring value = i + 1 < argc ? argv[i + 1] : L"";
        options.help = options.help || word == L"--help";
        if (word == L"--help" || word == L"--no-pause") { // the second is run-tests.cmd's own
            continue;
        }
        if (word == L"--only" && !value.empty()) {
            options.only.push_back(std::filesystem::path(value).generic_string());
        } else if (word == L"--longest-test" && std::wcstol(value.c_str(), nullptr, 10) > 0) {
            options.longestTest = static_cast<int>(std::wcstol(value.c_str(), nullptr, 10));
        } else {
            throw std::invalid_argument("not understood: " + std::filesystem::path(word).string());
        }
        ++i;
    }
    return options;
}

std::filesystem::path OwnFolder()
{
    wchar_t path[32768] = {};
    ::GetModuleFileNameW(nullptr, path, 32767);
    return std::filesystem::path(path).parent_path();
}

/// The tests' scratch files, which exist no longer than the tests run.
class Scratch
{
public:
    explicit Scratch(const std::filesystem::path& where) : folder(where)
    {
        Clear();
        std::filesystem::create_directories(folder);
        for (const wchar_t* const name : {L"TMP", L"TEMP"}) {
            ::SetEnvironmentVariableW(name, folder.c_str());
        }
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { Clear(); }

private:
    void Clear() const
    {
        std::error_code ignored; // a virus scanner may hold a file; the next run clears it
        std::filesystem::remove_all(folder, ignored);
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kOwnKey);
    }

    std::filesystem::path folder;
};

std::string Now()
{
    SYSTEMTIME now = {};
    ::GetSystemTime(&now);
    char text[64] = {};
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d UTC", now.wYear, now.wMonth, now.wDay,
                  now.wHour, now.wMinute);
    return text;
}

bool IsAscii(const std::wstring& text)
{
    return std::ranges::all_of(text, [](wchar_t character) {
        return character < 0x80;
    });
}

/// The tests find the windows of their trackers by name, and send messages to them. A boot program in
/// use has windows of the same names.
void RequireNoBootProgram()
{
    for (const wchar_t* const title : {L"Corvane Kestrafetch Boot", L"CardReaderLookupWindow"}) {
        if (::FindWindowW(nullptr, title) != nullptr) {
            throw std::runtime_error(
                "Kestrafetch's boot program is running, and the tests would get in its way; end "
                "it first (kestraboot.exe in the Task Manager)");
        }
    }
}

void SayWhatWillBeDone(Screen& screen)
{
    for (const char* const line :
         {"Tests of kestraboot " KESTRABOOT_VERSION_TEXT ", on this machine.", "",
          "They install nothing and need no administrator. They write into this folder and below",
          "the registry key HKEY_CURRENT_USER\\Software\\KestrabootTests, which is removed at the end.",
          "Meanwhile a console window may come and go, and other viewers of debug output are in the "
          "way.",
          "Close this window to stop them.", ""}) {
        screen.Say(line);
    }
}

bool Chosen(const Options& options, const std::string& program)
{
    return options.only.empty() || std::ranges::find(options.only, program) != options.only.end();
}

std::string Summary(const ProgramResults& results, ULONGLONG seconds)
{
    const auto count = [&](Outcome outcome) {
        return std::to_string(std::ranges::count(results.tests, outcome, &TestResult::outcome));
    };
    return results.program + ": " + count(Outcome::Passed) + " passed, " + count(Outcome::Failed) +
           " failed, " + count(Outcome::Skipped) + " skipped, " + std::to_string(seconds) + " s";
}

void RunPrograms(const ProgramList& list, const Options& options, const Places& places, Screen& screen,
                 Report& report)
{
    const auto count = std::ranges::count_if(list.programs, [&](const Program& program) {
        return Chosen(options, program.path);
    });
    for (const Program& program : list.programs) {
        if (!Chosen(options, program.path)) {
            continue;
        }
        const ULONGLONG begin = ::GetTickCount64();
        report.programs.push_back(
            {program.path, RunTestProgram(program, places, [&](std::size_t tests, const auto& results) {
                 screen.ShowProgress(program.path, tests, results);
             })});
        screen.Say('[' + std::to_string(report.programs.size()) + " of " + std::to_string(count) + "] " +
                   Summary(report.programs.back(), (::GetTickCount64() - begin) / 1000));
    }
}

void AddLeftOut(const ProgramList& list, Report& report)
{
    for (const TestLeftOut& test : list.leftOut) {
        if (report.leftOut.empty() || report.leftOut.back().program != test.program) {
            report.leftOut.push_back({test.program, {}});
        }
        report.leftOut.back().tests.push_back({test.name, Outcome::Skipped, 0, test.reason});
    }
}

int RunTests(const Options& options, Screen& screen)
{
    const std::filesystem::path programs = OwnFolder();
    const std::filesystem::path home = programs.parent_path();
    if (home.wstring().size() > kLongestFolder) {
        throw std::runtime_error(
            "the path of this folder is too long: unpack the archive into one with less than " +
            std::to_string(kLongestFolder) + " characters");
    }
    RequireNoBootProgram();
    const ProgramList list = ReadProgramList(programs, !WineVersion().empty());
    for (const std::string& wanted : options.only) {
        if (std::ranges::find(list.programs, wanted, &Program::path) == list.programs.end()) {
            throw std::runtime_error("there is no such program of tests: " + wanted);
        }
    }
    SayWhatWillBeDone(screen);
    Report report;
    report.facts = ThisMachine();
    report.facts.emplace_back("Folder",
                              std::to_string(home.wstring().size()) + " characters, " +
                                  (IsAscii(home.wstring()) ? "plain" : "with others than ASCII"));
    report.facts.emplace_back("Tests", "kestraboot " KESTRABOOT_VERSION_TEXT);
    report.facts.emplace_back("Begun", Now());
    const ULONGLONG begin = ::GetTickCount64();
    {
        const Scratch scratch(home / "scratch");
        ::SetEnvironmentVariableW(L"KESTRABOOT_LONGEST_TEST",
                                  std::to_wstring(options.longestTest).c_str());
        RunPrograms(list, options, {programs, home / "scratch", options.longestTest}, screen, report);
    }
    AddLeftOut(list, report);
    report.facts.emplace_back("Took", std::to_string((::GetTickCount64() - begin) / 1000) + " s");
    WriteText(report, home / "kestraboot-tests.txt");
    WriteJUnit(report, home / "kestraboot-tests.xml");

    screen.Say("");
    for (const ProgramResults& program : report.programs) {
        for (const TestResult& test : program.tests) {
            if (test.outcome == Outcome::Failed) {
                screen.Say("FAILED  " + program.program + "  " + test.name);
            }
        }
    }
    screen.Say(report.Summary());
    screen.Say(
        "All of it is in kestraboot-tests.txt, the file to send. kestraboot-tests.xml is for machines.");
    return report.Count(Outcome::Failed) == 0 ? kAllPassed : kSomeFailed;
}

} // namespace

extern "C" int wmain(int argc, wchar_t** argv);

int wmain(int argc, wchar_t** argv)
{
    Screen screen;
    try {
        const Options options = Understand(argc, argv);
        if (options.help) {
            screen.Say(kUsage);
            return kAllPassed;
        }
        return RunTests(options, screen);
    } catch (const std::invalid_argument& error) {
        screen.Say(error.what());
        screen.Say(kUsage);
    } catch (const std::exception& error) {
        screen.Say(std::string("The tests cannot be run: ") + error.what());
    }
    return kCouldNotRun;
}
