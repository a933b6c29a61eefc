// The viewer's window for a device that is no drive.
#include "tests/samples/sample_windows.h"

namespace kestraboot::tests
{
namespace
{

struct Arrival {
    const wchar_t* device; ///< the command line after the mode
    const wchar_t* sentence;
    const wchar_t* identifier;
};

class DeviceWindow : public SampleWindows, public testing::WithParamInterface<Arrival>
{
protected:
    Installation app{L"Mail Albums"};
};

TEST_P(DeviceWindow, SaysWhatArrivedUnderWhichIdentifier)
{
    const auto viewer = StartFor(app, L"direct", GetParam().device);
    const HWND window = AwaitShown(*viewer, kViewerTitle);
    EXPECT_EQ(TextOf(::GetDlgItem(window, IDC_ARRIVED)), GetParam().sentence);
    const HWND identifier = ::GetDlgItem(window, IDC_IDENTIFIER);
    EXPECT_EQ(TextOf(identifier), GetParam().identifier);
    EXPECT_EQ(::IsWindowVisible(identifier) != FALSE, *GetParam().identifier != L'\0');
    EXPECT_EQ(TextOf(::GetWindow(identifier, GW_HWNDPREV)), L"&Identifier:");
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Devices, DeviceWindow,
                         testing::Values(Arrival{L"devType=camera priDevId=\"{6BDD}\\0002\"",
                                                 L"A camera was connected.", L"{6BDD}\\0002"},
                                         Arrival{L"devType=scanner priDevId=\"The \"best\" scanner\\\"",
                                                 L"A scanner was connected.", L"The \"best\" scanner\\"},
                                         Arrival{L"devType=mobile priDevId=\"Phone 1\"",
                                                 L"A phone was connected.", L"Phone 1"},
                                         Arrival{L"devType= priDevId=\"rame grabber\"\"",
                                                 L"A device was connected.", L"rame grabber\""},
                                         Arrival{L"devType=volume priDevId=\"\\\\server\\share\"",
                                                 L"Drive \\\\server\\share was connected.",
                                                 L"\\\\server\\share"},
                                         Arrival{L"", L"No device was named.", L""}));

using ViewerStart = SampleWindows;

TEST_F(ViewerStart, ByHandSaysWhatItIsFor)
{
    const Installation app(L"Mail Albums");
    ChildProcess viewer(app.Application());
    const HWND window = AwaitShown(viewer, kViewerTitle);
    EXPECT_EQ(TextOf(::GetDlgItem(window, IDC_ARRIVED)),
              L"This program opens by itself when a device with pictures is connected.");
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0U);
    EXPECT_TRUE(app.Report().ends_with("not started for a device\n"));
}

TEST_F(ViewerStart, WithOtherArgumentsEndsAtOnce)
{
    const Installation app(L"Mail Albums");
    ChildProcess viewer(app.Application(), L"E:\\");
    EXPECT_EQ(viewer.ExitCode(), 2U);
    EXPECT_TRUE(app.Report().ends_with("not started for a device\n"));
}

} // namespace
} // namespace kestraboot::tests
