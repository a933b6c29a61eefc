// The chooser of the viewer: each of its buttons, driven by messages.
#include "tests/samples/sample_windows.h"
#include "tests/support/registry_sandbox.h"

namespace kestraboot::tests
{
namespace
{

class Chooser : public SampleWindows
{
protected:
    void Ask(const std::wstring& device = kCamera)
    {
        viewer = StartFor(albums, L"select", device);
        window = AwaitShown(*viewer, kChooserTitle);
        list = std::make_unique<RemoteList>(::GetDlgItem(window, IDC_APPLICATIONS));
    }

    [[nodiscard]] bool Enabled(int control) const
    {
        return ::IsWindowEnabled(::GetDlgItem(window, control)) != FALSE;
    }

    /// The default flags of Mail Albums and Mail Prints, of the user.
    std::pair<std::uint32_t, std::uint32_t> Flags() const
    {
        const auto flag = [](const Installation& app) {
            return StoredDword(HKEY_CURRENT_USER, app.KeyPath() + L"\\Preferences", L"DefaultFlag")
                .value_or(99);
        };
        return {flag(albums), flag(prints)};
    }

    /// Waits for the message box of the chooser, returns its text and closes it.
    std::wstring Dismiss() const
    {
        HWND box = nullptr;
        EXPECT_TRUE(Within(30'000, [&] {
            box = AwaitWindow(viewer->Id(), kViewerTitle, 0);
            return box != nullptr && ::GetDlgItem(box, 0xFFFF) != nullptr;
        })) << "no message comes";
        std::wstring text = TextOf(::GetDlgItem(box, 0xFFFF)); // its text, as winuser.h numbers it
        Click(box, ::GetDlgItem(box, IDOK) != nullptr ? IDOK : IDCANCEL);
        EXPECT_TRUE(Within(30'000, [box] {
            return ::IsWindow(box) == FALSE;
        }));
        return text;
    }

    // The library makes the user's preferences of names that begin with a letter such as M.
    Installation albums{L"Mail Albums"};
    Installation prints{L"Mail Prints"};
    std::unique_ptr<ChildProcess> viewer;
    std::unique_ptr<RemoteList> list;
    HWND window = nullptr;
};

TEST_F(Chooser, OpenStartsTheChosenApplicationInDirectMode)
{
    Ask();
    list->Select(list->Find(L"Mail Prints"));
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(prints, kCameraReport));
    EXPECT_EQ(albums.Report().find("mode: direct"), std::string::npos);
    EXPECT_EQ(Flags(), std::pair(0U, 0U));
}

TEST_F(Chooser, ReturnOpensAndEscapeCancels)
{
    Ask(L"");
    list->Select(list->Find(L"Mail Prints"));
    Press(::GetDlgItem(window, IDC_APPLICATIONS), VK_RETURN);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(prints, "mode: direct\ndevice:  \n")) << "no device was named";

    Ask();
    Press(::GetDlgItem(window, IDC_APPLICATIONS), VK_ESCAPE);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_EQ(prints.Report().find(kCameraReport), std::string::npos);
}

TEST_F(Chooser, CancelAndCloseStartNothing)
{
    for (const bool byButton : {true, false}) {
        Ask();
        if (byButton) {
            Click(window, IDCANCEL);
        } else {
            ::PostMessageW(window, WM_CLOSE, 0, 0);
        }
        EXPECT_EQ(viewer->ExitCode(), 0U);
    }
    EXPECT_EQ(trace.Count("\"" + albums.Application().string() + "\" module=kestrafetch"), 0);
    EXPECT_EQ(prints.Report(), "");
    EXPECT_EQ(albums.Report().find("mode: direct"), std::string::npos);
}

TEST_F(Chooser, AlwaysMakesTheChosenOneTheOnlyDefault)
{
    PutDword(HKEY_LOCAL_MACHINE, albums.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    PutDword(HKEY_CURRENT_USER, albums.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    Ask();
    list->Select(list->Find(L"Mail Prints"));
    Click(window, IDC_ALWAYS);
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(prints, kCameraReport));
    EXPECT_EQ(Flags(), std::pair(0U, 1U));
}

TEST_F(Chooser, SaysWhenTheChoiceCannotBeRemembered)
{
    Ask();
    list->Select(list->Find(L"Mail Prints"));
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        RemoveKey(hive, prints.KeyPath() + L"\\Preferences");
    }
    RemoveKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane"); // no place for a user's settings
    Click(window, IDC_ALWAYS);
    Click(window, IDOK);
    EXPECT_EQ(Dismiss(),
              L"Mail Prints is opened this time, but could not be made the application that is "
              L"always used.");
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(prints, kCameraReport));
}

TEST_F(Chooser, AnApplicationThatVanishedIsNamedAndAnotherCanBeChosen)
{
    Ask();
    list->Select(list->Find(L"Mail Prints"));
    prints.Unregister();
    Click(window, IDC_ALWAYS);
    Click(window, IDOK);
    EXPECT_EQ(Dismiss(), L"Mail Prints is no longer installed. Choose another application.");
    EXPECT_TRUE(Within(30'000, [&] {
        return list->Column() == std::vector<std::wstring>{L"Mail Albums"};
    }));
    EXPECT_EQ(prints.Report(), "");
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(albums, kCameraReport));
}

TEST_F(Chooser, TheLegacyOrganiserIsHandedTheDeviceAndIsNoDefault)
{
    const LegacyOrganiser organiser;
    const auto proxy = organiser.DeviceConnect().replace_filename(L"VelProxy.exe");
    std::filesystem::copy_file(organiser.DeviceConnect(), proxy);
    Ask();
    list->Select(list->Find(L"Corvane Vellumry 3.0"));
    EXPECT_FALSE(Enabled(IDC_ALWAYS));
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(trace.Await("\"" + proxy.string() + "\" -d \"C|Camera 1\""));
    EXPECT_EQ(trace.Count("<KestraBoot><!!! Unable to start the process.>"), 0);
}

TEST_F(Chooser, TheLegacyOrganiserWithoutItsFilesHasVanished)
{
    const LegacyOrganiser organiser;
    Ask();
    list->Select(list->Find(L"Corvane Vellumry 3.0"));
    Click(window, IDOK);
    EXPECT_EQ(Dismiss(), L"Corvane Vellumry 3.0 is no longer installed. Choose another application.");
    EXPECT_TRUE(viewer->Running());
}

TEST_F(Chooser, WithoutAnyApplicationThereIsNothingToOpen)
{
    albums.Unregister();
    prints.Unregister();
    Ask();
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(TextOf(::GetDlgItem(window, IDC_QUESTION)), L"No application is installed any more.");
    EXPECT_FALSE(Enabled(IDOK));
    EXPECT_FALSE(Enabled(IDC_ALWAYS));
    Click(window, IDCANCEL);
    EXPECT_EQ(viewer->ExitCode(), 0U);
}

} // namespace
} // namespace kestraboot::tests
