// Applications really start: the tests check the command line that they receive, and its words in their
// runtime.
#include "kestraboot/command_handler.h"
#include "tests/support/echo_child.h"
#include "tests/support/handle_count.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Words = std::vector<std::wstring>;

struct StartedApplication : testing::Test {
    /// Starts the echo program for a device. Returns the words that it receives after its own name.
    Words Seen(const EchoChild& child, std::wstring id, std::wstring mode = L"direct")
    {
        std::wstring path = child.Program();
        std::wstring type = L"volume";
        trace.Clear();
        CKestraBootCommandHandler().LaunchKestra(path, mode, type, id);
        const std::optional<std::wstring> line = child.CommandLine();
        EXPECT_TRUE(line) << "nothing was started";
        EXPECT_EQ(trace.Lines(), Words{line.value_or(L"")}); // the child receives the traced line
        Words words = SplitCommandLine(line.value_or(L"none"));
        EXPECT_EQ(words.front(), path);
        words.erase(words.begin());
        return words;
    }
    TraceRecorder trace;
};

TEST_F(StartedApplication, SeesTheDevice)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"E:"), (Words{L"module=kestrafetch", L"params", L"mode=direct",
                                         L"devType=volume", L"priDevId=E:"}));
}

TEST_F(StartedApplication, SeesNoDeviceIfThereIsNone)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L""), (Words{L"module=kestrafetch", L"params", L"mode=direct"}));
}

TEST_F(StartedApplication, MayBeInAFolderWithSpacesAndUnicode)
{
    const EchoChild child(L"Meine Bilder \x5199\x771F\\the viewer.exe");
    EXPECT_EQ(Seen(child, L"E:").size(), 5U);
}

TEST_F(StartedApplication, SeesAnIdentifierWithSpacesAsOneWord)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"a card  with spaces").back(), L"priDevId=a card  with spaces");
}

TEST_F(StartedApplication, SeesAnIdentifierInUnicode)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"\x5199\x771F \xD83D\xDE00").back(), L"priDevId=\x5199\x771F \xD83D\xDE00");
}

TEST_F(StartedApplication, SeesTheClosingQuoteOfAnIdentifierThatEndsInABackslash)
{
    // The product escapes nothing, so the application's runtime reads the backslash as an escape of the
    // quote.
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"E:\\").back(), L"priDevId=E:\"");
}

TEST_F(StartedApplication, SeesAQuoteInsideAnIdentifierEndTheQuotedText)
{
    const EchoChild child;
    const Words words = Seen(child, L"a\" b");
    EXPECT_EQ(words.at(4), L"priDevId=a");
    EXPECT_EQ(words.at(5), L"b");
}

TEST_F(StartedApplication, SeesAnIdentifierThatIsQuotedAlreadyWithoutItsQuotes)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"\"a b\"").back(), L"priDevId=a b");
}

TEST_F(StartedApplication, SeesAModeWithSpacesAsSeveralWords)
{
    const EchoChild child;
    EXPECT_EQ(Seen(child, L"", L"my mode"),
              (Words{L"module=kestrafetch", L"params", L"mode=my", L"mode"}));
}

TEST_F(StartedApplication, LeavesNoHandleOpenHere)
{
    const EchoChild child;
    EXPECT_EQ(HandlesLeftBy([&] {
                  EXPECT_EQ(Seen(child, L"E:").size(), 5U);
              }),
              0);
}

TEST_F(StartedApplication, ThatIsMissingIsTracedAsIfItHadStartedAndLeavesNoHandle)
{
    std::wstring path = L"C:\\no such folder\\viewer.exe";
    std::wstring mode = L"direct";
    std::wstring none;
    EXPECT_EQ(HandlesLeftBy([&] {
                  CKestraBootCommandHandler().LaunchKestra(path, mode, none, none);
              }),
              0);
    EXPECT_EQ(trace.Lines().at(0),
              L"\"C:\\no such folder\\viewer.exe\" module=kestrafetch params mode=direct");
}

TEST_F(StartedApplication, WithoutAPathIsAFailedStartOnEveryCRuntime)
{
    std::wstring mode = L"direct";
    std::wstring id = L"E:";
    for (std::wstring path : {std::wstring(), std::wstring(1, L'\0')}) {
        std::wstring none;
        CKestraBootCommandHandler().LaunchKestra(path, mode, none, none);
        CKestraBootCommandHandler().LaunchKestra(path, mode, none, id);
        CKestraBootCommandHandler().LaunchVel3Proxy(path, none, id);
    }
    ASSERT_EQ(trace.Lines().size(), 6U);
    EXPECT_EQ(trace.Lines().at(0), L"\"\" module=kestrafetch params mode=direct");
    EXPECT_EQ(trace.Lines().at(1),
              L"\"\" module=kestrafetch params mode=direct devType= priDevId=\"E:\"");
    EXPECT_EQ(trace.Lines().at(2), L"<KestraBoot><!!! Unable to start the process.>");
}

TEST_F(StartedApplication, IsNotFoundByAPathInQuotes)
{
    // The path is the name of the file, verbatim, and no file name contains a quote.
    const EchoChild child;
    std::wstring path = L'"' + child.Program() + L'"';
    std::wstring mode = L"direct";
    std::wstring none;
    errno = 0;
    CKestraBootCommandHandler().LaunchKestra(path, mode, none, none);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(trace.Lines(), Words{path + L" module=kestrafetch params mode=direct"});
    trace.Clear();
    CKestraBootCommandHandler().LaunchVel3Proxy(path, none, none);
    EXPECT_EQ(trace.Lines(), Words{L"<KestraBoot><!!! Unable to start the process.>"});
}

TEST_F(StartedApplication, WithACommandLineLongerThanWindowsAcceptsIsNotStarted)
{
    const EchoChild child;
    std::wstring path = child.Program();
    std::wstring text = L"direct";
    std::wstring id(32'767, L'i');
    CKestraBootCommandHandler().LaunchKestra(path, text, text, id);
    ASSERT_EQ(trace.Lines().size(), 1U); // but traced, like every failed start
    EXPECT_GT(trace.Lines()[0].size(), id.size());
}

} // namespace
} // namespace kestraboot
