// The output of the live trace viewer, by its options.
#include "tests/support/compatible_application.h"
#include "tests/support/temp_folder.h"
#include "tests/system/debug_reader.h"
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"
#include "tests/system/system_test.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string OwnName()
{
    return std::filesystem::path(RunningExecutable()).filename().string();
}

std::string Utf8(const std::wstring& text)
{
    char utf8[256] = {};
    ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, utf8, sizeof utf8, nullptr, nullptr);
    return utf8;
}

TEST(TraceOptions, LinesNameTheProcess)
{
    RunningViewer viewer;
    ::OutputDebugStringW(L"<a line>");
    EXPECT_THAT(viewer.Await("<a line>"),
                AllOf(HasSubstr("  " + OwnName().substr(0, 18) + "  "),
                      EndsWith(std::to_string(::GetCurrentProcessId()) + "  <a line>")));
    EXPECT_THAT(viewer.Lines().front(), testing::MatchesRegex("-- ....-..-..")) << "the day comes first";
}

TEST(TraceOptions, OnlyShowsTheTagsAskedFor)
{
    RunningViewer viewer(L"--only VolumeTracker --only KestraBoot");
    for (const wchar_t* const line :
         {L"another program's", L"<***DeviceConnect***><WiaTracker><a>",
          L"<***DeviceConnect***><VolumeTracker><b>", L"<KestraProxy><c>", L"<KestraBoot><d>"}) {
        ::OutputDebugStringW(line);
    }
    EXPECT_NE(viewer.Await("<KestraBoot><d>"), "");
    EXPECT_THAT(viewer.Lines(),
                ElementsAre(StartsWith("-- "), EndsWith("<***DeviceConnect***><VolumeTracker><b>"),
                            EndsWith("<KestraBoot><d>")));
}

TEST(TraceOptions, JsonIsOneEscapedObjectALine)
{
    RunningViewer viewer(L"--json");
    ::OutputDebugStringW(L"\"C:\\a.exe\"\tb\n");
    const std::string line = viewer.Await("a.exe");
    EXPECT_THAT(line, StartsWith("{\"type\":\"line\",\"schema\":1,\"time\":\"20"));
    EXPECT_THAT(line, HasSubstr("\"process\":" + std::to_string(::GetCurrentProcessId()) +
                                ",\"name\":\"" + OwnName() + "\",\"component\":\"\",\"tracker\":\"\","));
    EXPECT_THAT(line, EndsWith(R"("failure":false,"start":false,"line":"\"C:\\a.exe\"\tb"})"));
    EXPECT_THAT(viewer.Lines(), ElementsAre(line)) << "every line is an object";
}

TEST(TraceOptions, TextIsUtf8)
{
    RunningViewer viewer(L"--json");
    // Windows converts a line to the ANSI code page on the way; other characters are lost.
    const std::wstring sent = L"caf\u00e9 \u20ac";
    char ansi[64] = {};
    wchar_t received[64] = {};
    ::WideCharToMultiByte(CP_ACP, 0, sent.c_str(), -1, ansi, sizeof ansi, nullptr, nullptr);
    ::MultiByteToWideChar(CP_ACP, 0, ansi, -1, received, 64);
    ::OutputDebugStringA(ansi);
    ASSERT_THAT(Utf8(received), HasSubstr("\xC3\xA9")) << "this code page lacks the test's characters";
    EXPECT_THAT(viewer.Await("caf"), EndsWith("\"line\":\"" + Utf8(received) + "\"}"));
}

TEST(TraceOptions, FileHasTheSameLinesAppended)
{
    const TempFolder folder;
    const std::filesystem::path file = folder.AddFile("trace \u00e9.log", "kept\r\n");
    RunningViewer viewer(L"--file \"" + file.wstring() + L"\"");
    ::OutputDebugStringW(L"<into the file>");
    const std::string shown = viewer.Await("<into the file>");
    ASSERT_NE(shown, "");
    for (int tries = 0; tries < 1000 && !Contents(file).ends_with(">\r\n"); ++tries) {
        ::Sleep(10); // the file is written after standard output
    }
    EXPECT_THAT(Contents(file), AllOf(StartsWith("kept\r\n-- "), EndsWith(shown + "\r\n"))) << "at once";
}

TEST(TraceOptions, FileThatCannotBeOpenedIsReported)
{
    ChildProcess viewer{BuiltPrograms() / "kestratrace.exe", L"--file C:\\no\\such\\folder\\a.log"};
    EXPECT_EQ(viewer.ExitCode(), 1U);
    EXPECT_THAT(viewer.Output(),
                AllOf(StartsWith("kestratrace: cannot open C:\\no\\such\\folder\\a.log: "),
                      EndsWith(" (error 3)\n")));
}

TEST(TraceOptions, RedirectedOutputHasNoColours)
{
    RunningViewer viewer;
    ::OutputDebugStringW(L"<KestraBoot><!!! a failure>");
    EXPECT_THAT(viewer.Await("a failure"),
                AllOf(EndsWith("  <KestraBoot><!!! a failure>"), Not(HasSubstr("\x1b"))));
}

TEST(TraceOptions, WrongOnesShowTheUsage)
{
    for (const wchar_t* const arguments : {L"--colour", L"0", L"3 4", L"--file", L"--only Volume"}) {
        ChildProcess viewer{BuiltPrograms() / "kestratrace.exe", arguments};
        EXPECT_EQ(viewer.ExitCode(), 2U) << arguments;
        EXPECT_THAT(viewer.Output(), HasSubstr("usage: kestratrace ")) << arguments;
    }
}

TEST(TraceOptions, VersionPrintsTheBuild)
{
    ChildProcess viewer(BuiltPrograms() / L"kestratrace.exe", L"--version");
    EXPECT_EQ(viewer.ExitCode(), 0U);
    EXPECT_EQ(viewer.Output(), VersionText("kestratrace"));
}

TEST(TraceOptions, HelpGoesToStandardOutputAndErrorsDoNot)
{
    const auto standardOutput = [](const wchar_t* arguments) {
        ChildProcess viewer(BuiltPrograms() / "kestratrace.exe", arguments, WritesOn::FileAlone);
        viewer.ExitCode();
        return viewer.Output();
    };
    EXPECT_THAT(standardOutput(L"--help"), HasSubstr("\nusage: kestratrace "));
    EXPECT_EQ(standardOutput(L"--colour"), "");
}

TEST(TraceOptions, AnotherViewerKeepsTheChannel)
{
    const DebugReader other;
    ASSERT_TRUE(AwaitReader());
    ChildProcess viewer{BuiltPrograms() / "kestratrace.exe"};
    EXPECT_EQ(viewer.ExitCode(), 3U);
    EXPECT_THAT(viewer.Output(),
                StartsWith("kestratrace: another program already reads the debug output"));
    ::OutputDebugStringW(L"<still read by the other>");
    EXPECT_TRUE(other.Await("<still read by the other>"));
}

} // namespace
} // namespace kestraboot::tests
