#include "tests/samples/sample_windows.h"

namespace kestraboot::tests
{
namespace
{

BOOL CALLBACK CloseViewer(HWND window, LPARAM ended)
{
    const std::wstring title = TextOf(window);
    if (title != kChooserTitle && title != kViewerTitle && !title.starts_with(L"Pictures on ")) {
        return TRUE;
    }
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    const HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, processId);
    if (process == nullptr) {
        return TRUE; // it has ended meanwhile
    }
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    if (::WaitForSingleObject(process, 60'000) != WAIT_OBJECT_0) {
        *reinterpret_cast<bool*>(ended) = false;
    }
    ::CloseHandle(process);
    return TRUE;
}

} // namespace

std::unique_ptr<ChildProcess> SampleWindows::StartFor(const Installation& application,
                                                      const std::wstring& mode,
                                                      const std::wstring& device)
{
    return std::make_unique<ChildProcess>(application.Application(),
                                          L"module=kestrafetch params mode=" + mode +
                                              (device.empty() ? L"" : L" ") + device);
}

HWND SampleWindows::AwaitShown(const ChildProcess& process, const std::wstring& title)
{
    const HWND window = AwaitWindow(process.Id(), title);
    EXPECT_NE(window, nullptr) << "no window comes";
    EXPECT_TRUE(Within(30'000, [window] {
        return ::IsWindowVisible(window) != FALSE;
    }));
    return window;
}

testing::AssertionResult SampleWindows::AwaitStarted(const Installation& application,
                                                     const std::string& report)
{
    const bool started = Within(30'000, [&] {
        return application.Report().ends_with(report);
    });
    return started ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "its report is: " << application.Report();
}

void SampleWindows::CloseAll()
{
    bool ended = true;
    ::EnumWindows(CloseViewer, reinterpret_cast<LPARAM>(&ended));
    EXPECT_TRUE(ended) << "a viewer does not end when its window is closed";
}

} // namespace kestraboot::tests
