// Recordings read back by the trace viewer.
#include "tests/support/source_file.h"
#include "tests/support/temp_folder.h"
#include "tests/support/unix_path.h"
#include "tests/system/debug_reader.h"
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"

#include <gmock/gmock.h>

#include <psapi.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace kestraboot::tests
{
namespace
{

using testing::AllOf;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::size_t kLineColumn = 42;
const std::string kHead = "13:26:59.994  kestraboot.exe         556  ";
const std::string kFound = "<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>";
/// This line itself refuses the arrival, and is the last line that is compared.
const std::string kLast = "Could not get the device type.";

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

/// The arrivals in a viewer's output, without the parts that differ between runs.
std::vector<std::string> Comparable(const std::vector<std::string>& lines)
{
    static const std::regex changing(
        R"re("time":"[^"]*","process":\d+,"name":"[^"]*",|,"milliseconds":\d+)re");
    std::vector<std::string> arrivals;
    for (const std::string& line : lines) {
        if (line.starts_with("{\"type\":\"arrival\"")) {
            arrivals.push_back(std::regex_replace(line, changing, ""));
        }
    }
    return arrivals;
}

class TraceRecording : public testing::Test
{
protected:
    /// The viewer's output for a recording with these contents.
    std::string Shown(const std::string& contents, const std::wstring& options = {}, DWORD code = 0)
    {
        const std::filesystem::path file = folder.AddFile(L"a recording.log", contents);
        ChildProcess viewer{BuiltPrograms() / "kestratrace.exe",
                            options + L" --from \"" + file.wstring() + L"\""};
        EXPECT_EQ(viewer.ExitCode(), code);
        return viewer.Output();
    }

    TempFolder folder;
};

TEST_F(TraceRecording, GivesTheSameArrivalsAsTheLiveLines)
{
    // The lines of the demo, as if one process had written all of them.
    std::string recording = "-- 2026-11-21\r\n";
    std::vector<std::string> texts;
    for (const std::string& line : LinesOf(Contents(SourceFile("tests/tools/recordings/demo.log")))) {
        if (line.size() > kLineColumn) {
            texts.push_back(line.substr(kLineColumn));
            recording += line.substr(0, 14) + kHead.substr(14) + texts.back() + "\r\n";
        }
    }
    texts.push_back(kLast);
    recording += "23:59:00.000" + kHead.substr(12) + kLast + "\r\n";

    std::vector<std::string> live;
    {
        RunningViewer viewer(L"--arrivals --json");
        for (const std::string& text : texts) {
            ::OutputDebugStringA(text.c_str());
        }
        ASSERT_NE(viewer.Await("\"rule\":\"no-device-type\""), "");
        live = Comparable(viewer.Lines());
    }
    EXPECT_GE(live.size(), 8U);
    EXPECT_THAT(Comparable(LinesOf(Shown(recording, L"--arrivals --json"))), ElementsAreArray(live));
    const std::string json = Shown(recording, L"--json");
    EXPECT_THAT(Comparable(LinesOf(Shown(json, L"--arrivals --json"))), ElementsAreArray(live))
        << "by way of JSON";
}

TEST_F(TraceRecording, IsShownUnchanged)
{
    const std::filesystem::path file = folder.Path() / L"trace \u00e9.log";
    std::string live;
    {
        RunningViewer viewer(L"--file \"" + file.wstring() + L"\"");
        ::OutputDebugStringW(L"<KestraBoot><one>\n");
        ::OutputDebugStringW(L"another program's");
        live = viewer.Await("another program's");
        ASSERT_NE(live, "");
        while (!Contents(file).ends_with("another program's\r\n")) {
            ::Sleep(10); // the file is written after standard output; the watchdog limits this loop
        }
    }
    ChildProcess again{BuiltPrograms() / "kestratrace.exe", L"--from \"" + file.wstring() + L"\""};
    EXPECT_EQ(again.ExitCode(), 0U);
    std::string written = Contents(file);
    std::erase(written, '\r');
    EXPECT_EQ(again.Output(), written);
    EXPECT_THAT(written, AllOf(HasSubstr("<KestraBoot><one>\n"), HasSubstr(live)));
}

TEST_F(TraceRecording, MayBeAnotherViewersInUtf16)
{
    std::string utf16 = "\xFF\xFE";
    for (const char character :
         "1\t0.25\t[556] " + kFound +
             "\r\n2\t0.75\t[556] <***DeviceConnect***><Suppressing auto launch...>\r\n"
             "3\t1.25\t[556] <***DeviceConnect***><VolumeTracker><Launch not possible>.\r\n") {
        utf16 += {character, '\0'};
    }
    EXPECT_THAT(Shown(utf16, L"--arrivals"),
                HasSubstr("00:00:00.250  ?                      556  volume E: <VolumeTracker> refused: "
                          "\"SniffDepth\" is 0"));
}

TEST_F(TraceRecording, NamesTheLinesThatItCannotShow)
{
    const std::string shown =
        Shown("-- 2026-11-21\n" + kHead + "<one>\nsomething else\n\n\x01\x02\n" + kHead + "<tw");
    EXPECT_THAT(shown, AllOf(HasSubstr(kHead + "<one>\n"), HasSubstr(kHead + "<tw\n")));
    EXPECT_THAT(shown, HasSubstr("a recording.log: 2 lines are no viewer's and are left out\n"));
    EXPECT_THAT(
        shown,
        HasSubstr("a recording.log ends in the middle of a line, which is shown as far as it goes\n"));
    EXPECT_THAT(Shown("{\"type\":\"line\",\"schema\":1,\"ti"),
                HasSubstr("in the middle of a line, which is left out\n"));
    EXPECT_EQ(Shown(""), "");
}

TEST_F(TraceRecording, PassesTheFiltersOfEachKind)
{
    const std::string recording =
        "-- 2026-11-21\n" + kHead + "<KestraBoot><one>\n" + kHead +
        "<KestraProxy><two>\n13:26:59.994  viewer.exe              77  <KestraBoot><One>\n";
    const auto kept = [&](const std::wstring& options) {
        std::vector<std::string> texts;
        for (const std::string& line : LinesOf(Shown(recording, options))) {
            if (line.size() > kLineColumn) {
                texts.push_back(line.substr(28));
            }
        }
        return texts;
    };
    EXPECT_THAT(kept(L"--process 556 --only KestraBoot"), testing::SizeIs(1));
    EXPECT_THAT(kept(L"--process VIEWER"), testing::ElementsAre(HasSubstr("77  <KestraBoot><One>")));
    EXPECT_THAT(kept(L"--match <ONE>"), testing::SizeIs(2));
    EXPECT_THAT(kept(L"--match <two> --process viewer"), testing::IsEmpty());
}

TEST_F(TraceRecording, LeavesTheDebugOutputToOthers)
{
    const DebugReader other;
    EXPECT_THAT(Shown("-- 2026-11-21\n" + kHead + "<one>\n"), HasSubstr("<one>"));
}

TEST_F(TraceRecording, ThatCannotBeOpenedIsReported)
{
    ChildProcess viewer{BuiltPrograms() / "kestratrace.exe", L"--from C:\\no\\such\\folder\\a.log"};
    EXPECT_EQ(viewer.ExitCode(), 1U);
    EXPECT_THAT(viewer.Output(),
                AllOf(StartsWith("kestratrace: cannot open C:\\no\\such\\folder\\a.log: "),
                      HasSubstr(" (error 3)\n"),
                      Not(HasSubstr(".log: (error")))); // the text itself is Windows'
}

TEST_F(TraceRecording, UsesBoundedMemoryWhateverItsLength)
{
    const std::filesystem::path file = folder.AddFile(L"long.log", "-- 2026-11-21\n");
    {
        std::ofstream out(file, std::ios::binary | std::ios::app);
        std::string many;
        for (int i = 0; i < 10'000; ++i) {
            many += kHead + "<***DeviceConnect***><3><FILE><IMG_0001.JPG>\n";
        }
        for (int i = 0; i < 40; ++i) { // 34 MB
            out << many;
        }
        out << std::string(8 * 1024 * 1024, 'x'); // a line without an end
    }
    ChildProcess viewer{BuiltPrograms() / "kestratrace.exe",
                        L"--arrivals --from \"" + file.wstring() + L"\""};
    std::size_t most = 0;
    while (::WaitForSingleObject(viewer.Handle(), 20) == WAIT_TIMEOUT) {
        PROCESS_MEMORY_COUNTERS memory = {};
        if (::GetProcessMemoryInfo(viewer.Handle(), &memory, sizeof memory)) {
            most = std::max<std::size_t>(most, memory.PagefileUsage);
        }
    }
    EXPECT_EQ(viewer.ExitCode(), 0U);
    EXPECT_GT(most, 0U);
    EXPECT_LT(most, 16U * 1024 * 1024);
}

} // namespace
} // namespace kestraboot::tests
