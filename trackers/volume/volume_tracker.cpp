// The tracker's window and its message loop.
//
// A notification only triggers a scan: every message that reaches the window is a trigger, whatever
// its contents. While a removable drive exists, the loop also scans every 500 ms. Between the scans
// the window answers sent messages, because one top-level window that does not answer stalls every
// broadcast on the desktop. So the loop waits for messages and time together, and calls GetMessageW
// only if a message is there.
#include "trackers/volume/volume_tracker.h"

#include "trackers/volume/volume_scan.h"

#include <dbt.h>

namespace kestraboot
{
namespace
{

constexpr DWORD kPauseAfterFailedWait = 50; // milliseconds
constexpr const wchar_t* kWindowClass = L"DeviceDetectWin";
constexpr const wchar_t* kWindowName = L"CardReaderLookupWindow";

// Created while the library loads: the volumes that are present then are never reported.
DriveWatch drives;
VolumeScan volumeScan(drives);

LRESULT CALLBACK DeviceDetectProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    if (message == WM_DEVICECHANGE && wParam == DBT_DEVICEARRIVAL) {
        ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>");
    }
    if (message == WM_DEVICECHANGE && wParam == DBT_DEVICEREMOVECOMPLETE) {
        ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><DEVICE REMOVED>");
    }
    volumeScan.Trigger();
    return ::DefWindowProcW(window, message, wParam, lParam);
}

bool RegisterWindowClass(HINSTANCE instance) noexcept
{
    WNDCLASSEXW windowClass = {};
    static_assert(sizeof windowClass == 80);
    windowClass.cbSize = sizeof windowClass;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kWindowClass;
    windowClass.lpfnWndProc = DeviceDetectProcedure;
    return ::RegisterClassExW(&windowClass) != 0;
}

HWND CreateLookupWindow(const wchar_t* windowClass, HINSTANCE instance) noexcept
{
    return ::CreateWindowExW(0, windowClass, kWindowName, WS_POPUP, 20, 20, 200, 200, nullptr, nullptr,
                             instance, nullptr);
}

/// Answers sent messages and scans on time until a message for the loop is there.
void AwaitMessage(HWND window) noexcept
{
    for (;;) {
        // Before the messages, so that no number of messages delays a scan.
        if (volumeScan.MillisecondsToNextScan() == 0) {
            volumeScan.Scan();
        }
        MSG message = {};
        // PeekMessageW also delivers sent messages.
        if (::PeekMessageW(&message, window, WM_DEVICECHANGE, WM_DEVICECHANGE, PM_NOREMOVE)) {
            return;
        }
        const DWORD woken = ::MsgWaitForMultipleObjectsEx(
            0, nullptr, volumeScan.MillisecondsToNextScan(), QS_SENDMESSAGE | QS_POSTMESSAGE, 0);
        if (woken == WAIT_TIMEOUT) {
            volumeScan.Scan();
        } else if (woken == WAIT_FAILED) {
            ::Sleep(kPauseAfterFailedWait);
        }
    }
}

void PumpMessages(HWND window, bool ownClass) noexcept
{
    for (;;) {
        AwaitMessage(window);
        MSG message = {};
        const BOOL got = ::GetMessageW(&message, window, WM_DEVICECHANGE, WM_DEVICECHANGE);
        if (got == 0) {
            return;
        }
        if (got == -1) {
            continue;
        }
        if (!ownClass && message.message == WM_DEVICECHANGE && message.wParam == DBT_DEVNODES_CHANGED) {
            volumeScan.Trigger(); // no procedure of ours sees the message
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

} // namespace

DWORD WINAPI VolumeTrackerThread(LPVOID) noexcept
{
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><Volumes will be detected.>");
    volumeScan.Trigger();

    const HINSTANCE instance = ::GetModuleHandleW(nullptr);
    const bool ownClass = RegisterWindowClass(instance);
    // If the window cannot be created, the loop waits on none.
    const HWND window = CreateLookupWindow(ownClass ? kWindowClass : L"STATIC", instance);
    PumpMessages(window, ownClass);
    return 0;
}

} // namespace kestraboot
