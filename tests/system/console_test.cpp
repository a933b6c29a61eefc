// The boot program and the console window from which it is started.
#include "tests/system/console_window.h"
#include "tests/system/faults.h"
#include "tests/system/system_test.h"

#include <fstream>
#include <iterator>

namespace kestraboot::tests
{
namespace
{

class AtAPrompt : public SystemTest
{
protected:
    /// The text that a short run leaves in the window, after the prompt's line.
    std::string Says(const std::wstring& arguments, DWORD exitCode, WritesOn output = WritesOn::Console)
    {
        const ConsoleWindow console;
        ChildProcess boot(app.Proxy(), arguments, output);
        EXPECT_EQ(boot.ExitCode(), exitCode);
        const std::string text = console.Text();
        EXPECT_EQ(text.substr(0, 4), "C:\\>");
        return text.substr(4);
    }

    /// The report of inherited.exe.
    static std::string ToldBy(const std::filesystem::path& program)
    {
        std::string told; // a file cannot be read while it is being moved
        EXPECT_TRUE(Within(30'000, [&] {
            std::ifstream in(std::filesystem::path(program) += L".txt", std::ios::binary);
            told.assign(std::istreambuf_iterator<char>(in), {});
            return !told.empty();
        }));
        return told;
    }

    /// The report of inherited.exe in the application's place, started with this output.
    std::string InheritedWith(WritesOn output) const
    {
        const ConsoleWindow console;
        app.Put(L"inherited.exe", app.Application().filename());
        EXPECT_EQ(ChildProcess(app.Application(), L"", output).ExitCode(), 0U);
        return ToldBy(app.Application());
    }

    Installation app{L"App"};
};

TEST_F(AtAPrompt, AShortRunWritesToTheWindow)
{
    EXPECT_EQ(Says(L"--help", kDone), "\n" + kUsageText);
    EXPECT_EQ(Says(L"--version", kDone), "\n" + VersionText());
    EXPECT_EQ(Says(L"/install", kUsage), "\n" + kUsageText);
    EXPECT_EQ(Says(L"-default Nobody yes", kUnknownApplication),
              "\n !!! Invalid first argument value."
              "\n !!! This application is not registered as Kestra compatible.");
    EXPECT_EQ(Says(L"-default App maybe", kUsage), "\n !!! Invalid second argument value.");
    // The last line ends in a blank.
    EXPECT_EQ(Says(L"-default App", kUsage) + "\n",
              std::string(kDefaultSyntax).erase(kDefaultSyntax.size() - 2, 1) + "\n");
}

TEST_F(AtAPrompt, AShortRunThatIsGivenTheWindowsHandleWritesToItToo)
{
    EXPECT_EQ(Says(L"--version", kDone, WritesOn::ConsoleHandle), "\n" + VersionText());
    EXPECT_EQ(Says(L"-default App maybe", kUsage, WritesOn::ConsoleHandle),
              "\n !!! Invalid second argument value.");
}

TEST_F(AtAPrompt, AShortRunWithoutAConsoleAttachesToThatOfItsParent)
{
    const ConsoleWindow console;
    const Faults held(app, L"kestraboot.exe!fputws=hold");
    ChildProcess boot(app.Proxy(), L"--version", WritesOn::Nothing);
    ASSERT_TRUE(trace.Await("<calls fputws>"));
    EXPECT_TRUE(ConsoleWindow::Has(boot.Id()));
}

TEST_F(AtAPrompt, AShortRunOpensTheWindowOnlyIfItAttachedToOne)
{
    // At a prompt, Wine 8 gives a program of the Windows subsystem the console and its handles. Wine 10
    // gives it nothing, as Microsoft documents it: the program attaches to the console.
    const std::string given = InheritedWith(WritesOn::Console);
    const bool isWine8 = given.starts_with("attached\n");
    const std::string handles = isWine8 ? "device device \n" : "none none \n";
    ASSERT_EQ(given, (isWine8 ? "attached\n" : "not attached\n") + handles + handles + handles);

    const auto run = [&](const std::wstring& attaching, WritesOn output) {
        const ConsoleWindow console;
        const Faults seen(
            app, (L"kestraboot.exe!freopen=tell kestraboot.exe!AttachConsole=" + attaching).c_str());
        ChildProcess boot(app.Proxy(), L"--version", output);
        EXPECT_EQ(boot.ExitCode(), kDone);
        std::string seenThere;
        for (const std::string& line : trace.LinesOf(boot.Id())) {
            seenThere += line;
        }
        return seenThere + console.Text();
    };
    const std::string attaches = "<calls AttachConsole>C:\\>";
    const std::string opens = "<calls AttachConsole><calls freopen>C:\\>";
    const std::string text = "\n" + VersionText();
    // Wine 8's C runtime does not reopen a standard output that never had a handle, so the text is lost.
    EXPECT_EQ(run(L"tell", WritesOn::Nothing), opens + (isWine8 ? "" : text));
    EXPECT_EQ(run(L"fail", WritesOn::Nothing), attaches);
    EXPECT_EQ(run(L"tell", WritesOn::Console), (isWine8 ? attaches : opens) + text);
    EXPECT_EQ(run(L"tell", WritesOn::ConsoleHandle), attaches + text);
}

TEST_F(AtAPrompt, ARunThatSucceedsPrintsNothing)
{
    EXPECT_EQ(Says(L"-default App yes", kDone), "");
    EXPECT_EQ(Says(L"-uninstall", kDone), "");
}

TEST_F(AtAPrompt, OutputThatIsRedirectedStaysRedirected)
{
    const ConsoleWindow console;
    for (const wchar_t* const arguments : {L"--help", L"/install"}) {
        ChildProcess boot(app.Proxy(), arguments);
        boot.ExitCode();
        EXPECT_EQ(boot.Output(), kUsageText);
    }
    ChildProcess wrong(app.Proxy(), L"-default App maybe");
    wrong.ExitCode();
    EXPECT_EQ(wrong.Output(), "\n !!! Invalid second argument value.");
    ChildProcess thrownAway(app.Proxy(), L"--help", WritesOn::Nul);
    EXPECT_EQ(thrownAway.ExitCode(), kDone);
    EXPECT_EQ(console.Text(), "C:\\>");
}

TEST_F(AtAPrompt, AStartThatFailsIsReportedOnTheWindow)
{
    const Faults faults(app, L"kestraboot.exe!CreateWindowExW=fail");
    EXPECT_EQ(Says(L"", kCannotServe), "\n" + kNoWindow + "\n");
}

class Serving : public AtAPrompt, public testing::WithParamInterface<WritesOn>
{
};

TEST_P(Serving, HoldsNothingOfTheWindowAndOutlivesIt)
{
    auto console = std::make_unique<ConsoleWindow>();
    const HWND window = ::GetConsoleWindow();
    ChildProcess boot(app.Proxy(), L"", GetParam());
    ASSERT_NE(AwaitWindow(boot.Id(), kBootTitle), nullptr);
    EXPECT_TRUE(ConsoleWindow::Has(::GetCurrentProcessId()));
    EXPECT_FALSE(ConsoleWindow::Has(boot.Id()));

    ASSERT_TRUE(console->PressCtrlC());
    EXPECT_EQ(console->Text(), "C:\\>");
    console.reset(); // the shell exits
    EXPECT_TRUE(Within(30'000, [window] {
        return !::IsWindow(window);
    })) << "the boot program keeps the window open";
    EXPECT_TRUE(boot.Running());
    Quit(boot);
}

TEST_P(Serving, PassesOnNothingOfTheWindow)
{
    app.Put(L"inherited.exe", app.Application().filename());
    app.Put(L"nokiamanager.mox", L"moxplugins/nokiamanager.mox");
    const ConsoleWindow console;
    ChildProcess boot(app.Proxy(), L"", GetParam());
    ChildProcess phone(BuiltPrograms() / L"phone.exe", L"ready", WritesOn::Nothing);
    EXPECT_EQ(phone.ExitCode(), 0U);

    const std::string told = ToldBy(app.Application());
    EXPECT_EQ(told.find("not attached\n"), 0U) << told;
    EXPECT_EQ(console.Text(), "C:\\>");
    Quit(boot);
    // The redirected handles are passed on as the parent set them.
    const bool toAFile = GetParam() == WritesOn::File;
    EXPECT_EQ(told.find("file") != std::string::npos, toAFile) << told;
    EXPECT_EQ(boot.Output().starts_with("inherited"), toAFile);
}

std::string NameOf(const testing::TestParamInfo<WritesOn>& output)
{
    constexpr const char* kNames[] = {"File", "Nothing", "Console", "ConsoleHandle", "Nul"};
    return kNames[static_cast<int>(output.param)];
}

INSTANTIATE_TEST_SUITE_P(StartedWith, Serving,
                         testing::Values(WritesOn::Console, WritesOn::ConsoleHandle, WritesOn::File,
                                         WritesOn::Nul),
                         NameOf);

TEST_F(AtAPrompt, AHandOverPassesNothingOfTheWindowToTheNextBootProgram)
{
    Installation other(L"Other", L"inherited.exe");
    ChildProcess serving(app.Proxy(), L"", WritesOn::Nothing);
    ASSERT_NE(AwaitWindow(serving.Id(), kBootTitle), nullptr);
    app.Unregister();
    const ConsoleWindow console;
    ChildProcess uninstall(app.Proxy(), L"-uninstall", WritesOn::ConsoleHandle);
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_EQ(ToldBy(other.Proxy()).find("not attached\n"), 0U);
    EXPECT_EQ(console.Text(), "C:\\>");
}

} // namespace
} // namespace kestraboot::tests
