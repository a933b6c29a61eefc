#include "tests/system/imaging/imaging_host_process.h"

#include "tests/support/process_window.h"

#include <dbt.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kLongestWait = 30'000; // milliseconds

} // namespace

ImagingHostProcess::ImagingHostProcess(const std::wstring& program) : HostProcess(program)
{
    if (!WaitFor("ready")) {
        throw std::runtime_error("the host does not get ready");
    }
}

bool ImagingHostProcess::CatchUp()
{
    const std::string question = "here " + std::to_string(++questions);
    Send(question);
    return WaitFor(question);
}

bool ImagingHostProcess::HasTrackerWindow()
{
    if (trackerWindow == nullptr) {
        trackerWindow = FindWindowOf(Id(), L"STITrackerWindow");
    }
    return trackerWindow != nullptr;
}

bool ImagingHostProcess::AwaitTrackerWindow()
{
    // The window appears after the line that reports whether devices will be detected.
    for (const ULONGLONG end = ::GetTickCount64() + kLongestWait; !HasTrackerWindow(); ::Sleep(5)) {
        if (::GetTickCount64() > end) {
            return false;
        }
    }
    return true;
}

bool ImagingHostProcess::NotifyDeviceChange()
{
    return AwaitTrackerWindow() &&
           ::PostMessageW(trackerWindow, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0) != FALSE;
}

bool ImagingHostProcess::ServeDeviceChange()
{
    DWORD_PTR answer = 0;
    return AwaitTrackerWindow() &&
           ::SendMessageTimeoutW(trackerWindow, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0, SMTO_NORMAL,
                                 kLongestWait, &answer) != 0 &&
           CatchUp();
}

} // namespace kestraboot::tests
