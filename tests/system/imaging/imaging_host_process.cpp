#include "tests/system/imaging/imaging_host_process.h"

#include <dbt.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kLongestWait = 30'000; // milliseconds

struct WindowSearch {
    DWORD processId;
    HWND found;
};

BOOL CALLBACK LookAt(HWND window, LPARAM search)
{
    auto& wanted = *reinterpret_cast<WindowSearch*>(search);
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    wchar_t title[64] = {};
    ::GetWindowTextW(window, title, 64);
    if (owner == wanted.processId && std::wstring(title) == L"STITrackerWindow") {
        wanted.found = window;
        return FALSE;
    }
    return TRUE;
}

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
        WindowSearch search = {Id(), nullptr};
        ::EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
        trackerWindow = search.found;
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
