// The exit codes of kestraboot.exe, each from a real process; docs/exit-codes.md holds them as a table.
#include "samples/simulators/cards/card_slot.h"
#include "tests/support/source_file.h"
#include "tests/support/unix_path.h"
#include "tests/system/faults.h"
#include "tests/system/quiet_exit.h"
#include "tests/system/system_test.h"

#include <algorithm>
#include <dbt.h>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

namespace kestraboot::tests
{
namespace
{

class ExitCodes : public SystemTest
{
protected:
    void Row(const std::string& situation, DWORD code) { rows.emplace_back(code, situation); }

    ~ExitCodes() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    DWORD ServeUntilACardArrives()
    {
        app.AddOemFile(""); // an empty file does not stop it
        app.Register();
        SetWindowsVersion(L"kestraboot.exe", L"vista");
        ChildProcess boot(app.Proxy());
        const HWND window = AwaitWindow(boot.Id(), kVolumeWindow);
        // Under Wine a process that exits while one of its threads is busy with COM may never exit.
        for (const char* const line :
             {"<***DeviceConnect***><WiaTracker><WIA devices will not be detected>.",
              "<***DeviceConnect***><StiTracker><STI Devices will not be detected.>",
              "<***DeviceConnect***><NOKIA Devices will not be detected.>"}) {
            EXPECT_TRUE(trace.Await(line)) << line;
        }
        app.Unregister();
        EXPECT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
        return boot.ExitCode();
    }

    DWORD RunWithoutWindows()
    {
        app.Register();
        const Faults noWindow(app, L"kestraboot.exe!CreateWindowExW=fail");
        return Run(L"");
    }

    DWORD Run(const wchar_t* arguments) { return ChildProcess(app.Proxy(), arguments).ExitCode(); }

    Installation app{L"Maker"};
    TempFolder card;
    std::vector<std::pair<DWORD, std::string>> rows;
};

TEST_F(ExitCodes, AreThoseOfThePage)
{
    {
        ChildProcess boot(app.Proxy());
        const HWND window = AwaitWindow(boot.Id(), kBootTitle);
        ASSERT_NE(window, nullptr);
        Row("another instance is in control", Run(L"-install"));
        SuspendThreadsBeside(window);
        ::SendMessageW(window, WM_QUIT, 0, 0);
        Row("it was in control and was asked to quit, or the session ended", boot.ExitCode());
        Row("`-uninstall` did its work", Run(L"-uninstall"));
        Row("`-default \"Maker\" yes`: the flag is set where the user may write",
            Run(L"-default Maker yes"));
        Row("`-default \"Maker\" maybe`: neither yes nor no", Run(L"-default Maker maybe"));
        Row("`-default` with too few or too many words", Run(L"-default Maker"));
        Row("`--help` or `--version`", Run(L"--help"));
        Row("any other argument, such as `/install`", Run(L"/install"));
    }
    app.AddOemFile("[KestraProxyStopInstall]\r\n1\r\n");
    Row("the OEM file stops the install", Run(L""));
    Row("`-default \"Nobody\" yes`: no compatible application has that name",
        Run(L"-default Nobody yes"));
    app.Unregister();
    Row("`-default`, and no compatible application is installed any more", Run(L"-default Maker yes"));
    Row("no compatible application is installed, or this user wants none", Run(L""));
    Row("it was in control, a device arrived, and no compatible application was installed any more",
        ServeUntilACardArrives());
    Row("a window, memory or a working folder is not available", RunWithoutWindows());
    EXPECT_EQ(Run(L"--version"), kDone); // the other arguments need no application
    EXPECT_EQ(Run(L"/install"), kUsage);
    EXPECT_EQ(Run(L"-default Maker"), kUsage);

    std::ranges::stable_sort(rows, {}, &std::pair<DWORD, std::string>::first);
    std::string table = "| exit code | when |\n|---|---|\n";
    for (const auto& [code, situation] : rows) {
        table += "| " + std::to_string(code) + " | " + situation + " |\n";
    }
    std::ifstream file(SourceFile("docs/exit-codes.md"), std::ios::binary);
    const std::string page(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(page.find(table), std::string::npos) << "docs/exit-codes.md must contain this table:\n\n"
                                                   << table;
}

} // namespace
} // namespace kestraboot::tests
