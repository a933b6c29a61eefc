#include "trackers/mox/source_tracker.h"

#include "foundation/trace.h"

#include <new>

namespace kestraboot
{
namespace
{

constexpr DWORD kPauseAfterFailedGet = 50; // milliseconds
constexpr const wchar_t* kWindowName = L"MOXTrackerWindow";

/// A window of this thread. It has no procedure of its own: plugins report through the callback.
class TrackerWindow
{
public:
    TrackerWindow() noexcept
        : window(::CreateWindowExW(0, L"STATIC", kWindowName, WS_POPUP, 20, 20, 200, 200, nullptr,
                                   nullptr, nullptr, nullptr))
    {
    }
    TrackerWindow(const TrackerWindow&) = delete;
    TrackerWindow& operator=(const TrackerWindow&) = delete;
    ~TrackerWindow()
    {
        if (window != nullptr) {
            ::DestroyWindow(window);
        }
    }

    [[nodiscard]] explicit operator bool() const noexcept { return window != nullptr; }

    /// Serves device-change messages, and answers sent messages, until WM_QUIT.
    void ServeMessages() const noexcept
    {
        MSG message = {};
        while (const BOOL got = ::GetMessageW(&message, window, WM_DEVICECHANGE, WM_DEVICECHANGE)) {
            if (got == -1) {
                ::Sleep(kPauseAfterFailedGet); // retried after a pause, so that a lasting failure does
                                               // not occupy a processor
                continue;
            }
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
    }

private:
    HWND window;
};

} // namespace

SourceTracker::SourceTracker(const DeviceSource& tracked)
    : source(tracked), callbackWithoutReference(std::make_unique<CMOXCallbackInterface>())
{
}

void SourceTracker::Run() noexcept
{
    if (!OpenSource()) {
        return;
    }
    CMOXCallbackInterface* const callback = callbackWithoutReference.release();
    callback->AddReference();
    if (host.managers.RegisterSourceCallback(source.identifier, callback) == mox::kSuccess) {
        Listen();
        host.managers.UnregisterSourceCallback(source.identifier, callback);
    }
    callback->Release();
    host.managers.CloseSourceManagers();
}

bool SourceTracker::OpenSource() noexcept
{
    mox::PluginDescriptor wanted = {};
    CopyToField(wanted.modulePath, source.modulePath);
    return host.plugins.LoadPlugin(wanted) == mox::kSuccess &&
           host.managers.OpenSourceManagers() == mox::kSuccess;
}

void SourceTracker::Listen() const noexcept
{
    const TrackerWindow window;
    if (!window) {
        return;
    }
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><%ls><Devices will be detected.>", source.name.c_str());
    ::OutputDebugStringW(line);
    window.ServeMessages();
}

void StartSourceTracker(const DeviceSource& source) noexcept
{
    try {
        auto tracker = std::make_unique<SourceTracker>(source);
        // The handle stays open: trackers run until the process ends, and nothing waits for one.
        if (::CreateThread(nullptr, 0, SourceTrackerThread, tracker.get(), 0, nullptr) != nullptr) {
            static_cast<void>(tracker.release()); // the thread owns it now
        }
    } catch (const std::bad_alloc&) {
        // This source is not tracked; the next one may be.
    }
}

DWORD WINAPI SourceTrackerThread(LPVOID tracker) noexcept
{
    std::unique_ptr<SourceTracker> owned(static_cast<SourceTracker*>(tracker));
    owned->Run();
    if (owned->PluginStaysLoaded()) {
        static_cast<void>(owned.release()); // the plugin still has the address of the list entry in it
    }
    return 0;
}

} // namespace kestraboot
