// The end of a session, or of the boot program alone, during any activity of the trackers.
#include "samples/simulators/cards/card_slot.h"
#include "tests/support/unix_path.h"
#include "tests/system/faults.h"
#include "tests/system/quiet_exit.h"
#include "tests/system/system_test.h"

#include <dbt.h>

#include <algorithm>

namespace kestraboot::tests
{
namespace
{

/// The ways to ask a boot program to end.
struct End {
    const char* name;
    UINT message;
    WPARAM wParam;
    bool posted;
    const char* next; ///< the boot program's first call after it
};

const End kEnds[] = {{"TheSession", WM_ENDSESSION, TRUE, false, "PostQuitMessage"},
                     {"ASentRequest", WM_QUIT, 0, false, "PostQuitMessage"},
                     {"APostedRequest", WM_QUIT, 0, true, "TerminateProcess"},
                     {"AClosedWindow", WM_CLOSE, 0, false, "PostQuitMessage"}};

class Ending : public SystemTest
{
protected:
    ~Ending() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    void Start()
    {
        boot = std::make_unique<ChildProcess>(app.Proxy());
        window = AwaitWindow(boot->Id(), kBootTitle);
        ASSERT_NE(window, nullptr);
    }

    void AskToEnd(const End& end) const
    {
        // The test sends it without waiting, because in some tests the answer never comes.
        EXPECT_TRUE(
            (end.posted ? ::PostMessageW : ::SendNotifyMessageW)(window, end.message, end.wParam, 0));
    }

    /// Reports a device; returns when the callback has returned.
    static void Report(const std::wstring& phone)
    {
        ChildProcess news(BuiltPrograms() / L"phone.exe", L"ready " + phone, WritesOn::Nothing);
        EXPECT_EQ(news.ExitCode(), 0U);
    }

    std::string StartLine(const std::string& phone) const
    {
        return "\"" + app.Application().string() +
               "\" module=kestrafetch params mode=direct devType=mobile priDevId=\"" + phone + "\"";
    }

    Installation app{L"App"};
    TempFolder card;
    std::unique_ptr<ChildProcess> boot;
    HWND window = nullptr;
};

class AfterTheEnd : public Ending, public testing::WithParamInterface<End>
{
};

TEST_P(AfterTheEnd, AReportStartsNothing)
{
    app.Put(L"nokiamanager.mox", L"moxplugins/nokiamanager.mox");
    const std::string next = GetParam().next;
    const Faults faults(
        app, (L"kestraboot.exe!" + std::wstring(next.begin(), next.end()) + L"=hold").c_str());
    Start();
    Report(L"Early");
    ASSERT_EQ(trace.Count(StartLine("Early")), 1);
    AskToEnd(GetParam());
    ASSERT_TRUE(trace.Await("<calls " + next + ">"));
    Report(L"Late");
    EXPECT_EQ(trace.Count(StartLine("Late")), 0);
}

TEST_P(AfterTheEnd, AReportOnItsWayToAStartIsNotWaitedFor)
{
    app.Put(L"nokiamanager.mox", L"moxplugins/nokiamanager.mox");
    const Faults faults(app, L"kestraboot.dll!_wspawnlp=hold");
    Start();
    ChildProcess news(BuiltPrograms() / L"phone.exe", L"ready", WritesOn::Nothing);
    ASSERT_TRUE(trace.Await("<calls _wspawnlp>"));
    SuspendThreadsBeside(window);
    AskToEnd(GetParam());
    EXPECT_EQ(boot->ExitCode(), kDone);
    EXPECT_EQ(app.Report(), "");
}

TEST_P(AfterTheEnd, ASearchThatHangsIsNotWaitedFor)
{
    const Faults faults(app, L"kestraboot.dll!FindFirstFileW=hold");
    SetWindowsVersion(L"kestraboot.exe", L"vista");
    Start();
    const HWND tracker = AwaitWindow(boot->Id(), kVolumeWindow);
    ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
    ::PostMessageW(tracker, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    ASSERT_TRUE(trace.Await("<calls FindFirstFileW>"));
    AwaitTrackers({kNoWia, kNoSti, kNoPhones});
    SuspendThreadsBeside(window);
    AskToEnd(GetParam());
    EXPECT_EQ(boot->ExitCode(), kDone);
}

TEST_P(AfterTheEnd, ALibraryThatHangsWhileItIsLoadedIsNotWaitedFor)
{
    app.Put(L"hanging.mox", L"moxplugins/nokiamanager.mox");
    Start();
    ASSERT_TRUE(trace.Await("<hanging.mox is loaded>"));
    SuspendThreadsBeside(window);
    AskToEnd(GetParam());
    EXPECT_EQ(boot->ExitCode(), kDone);
}

INSTANTIATE_TEST_SUITE_P(Of, AfterTheEnd, testing::ValuesIn(kEnds),
                         [](const testing::TestParamInfo<End>& end) {
                             return end.param.name;
                         });

TEST_F(Ending, TheQueryIsAnsweredAtOnceAndEndsNothing)
{
    app.Put(L"nokiamanager.mox", L"moxplugins/nokiamanager.mox");
    Start();
    DWORD_PTR answer = 0;
    ASSERT_NE(::SendMessageTimeoutW(window, WM_QUERYENDSESSION, 0, 0, SMTO_BLOCK, 2'000, &answer), 0);
    EXPECT_EQ(answer, 1U);
    ::SendMessageW(window, WM_ENDSESSION, FALSE, 0); // another program refused
    Report(L"Later");
    EXPECT_EQ(trace.Count(StartLine("Later")), 1);
    Quit(*boot);
}

TEST_F(Ending, ALogOffEndsIt)
{
    Start();
    ChildProcess logOff(L"C:\\windows\\system32\\wineboot.exe", L"-e -s", WritesOn::Nothing);
    EXPECT_EQ(boot->ExitCode(), kDone);
    EXPECT_EQ(logOff.ExitCode(), 0U);
}

TEST_F(Ending, ALogOffBeforeAnyDeviceFindsTheEntryOfAHandOverCorrect)
{
    Installation other(L"Other");
    Start();
    // As an uninstaller may do: first the hand-over, then the key and the files.
    ChildProcess uninstall(app.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    ASSERT_TRUE(Within(30'000, [] {
        return ::FindWindowW(nullptr, kBootTitle.c_str()) != nullptr;
    }));
    app.Unregister();
    std::filesystem::remove(app.Proxy());
    ChildProcess logOff(L"C:\\windows\\system32\\wineboot.exe", L"-e -s", WritesOn::Nothing);
    EXPECT_EQ(logOff.ExitCode(), 0U);
    EXPECT_TRUE(Within(30'000, [] {
        return ::FindWindowW(nullptr, kBootTitle.c_str()) == nullptr;
    }));
    EXPECT_EQ(AutoRunEntry(), L"\"" + other.Proxy().wstring() + L"\"");
}

} // namespace
} // namespace kestraboot::tests
