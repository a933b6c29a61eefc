#include "tests/trackers/mox/plugin_folder.h"

#include "foundation/text.h"

#include <algorithm>
#include <chrono>

namespace kestraboot::tests
{
namespace
{

PluginFolder* stageOfThisProgram = nullptr;

constexpr UINT kEndMessage = WM_APP;

/// Ends the message loop from inside, because nothing else in the process ends it.
LRESULT CALLBACK EndingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kEndMessage) {
        ::PostQuitMessage(0);
        return 0;
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

BOOL CALLBACK AddTrackerWindow(HWND window, LPARAM list)
{
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    wchar_t name[64] = {};
    wchar_t windowClass[64] = {};
    ::GetWindowTextW(window, name, 64);
    ::GetClassNameW(window, windowClass, 64);
    if (process == ::GetCurrentProcessId() && std::wcscmp(name, L"MOXTrackerWindow") == 0 &&
        _wcsicmp(windowClass, L"STATIC") == 0) {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    }
    return TRUE;
}

std::vector<HWND> TrackerWindows()
{
    std::vector<HWND> windows;
    ::EnumWindows(AddTrackerWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

} // namespace

int CountTrackerWindows()
{
    return static_cast<int>(TrackerWindows().size());
}

int EndTrackers()
{
    const std::vector<HWND> windows = TrackerWindows();
    for (const HWND window : windows) {
        const HANDLE thread =
            ::OpenThread(SYNCHRONIZE, FALSE, ::GetWindowThreadProcessId(window, nullptr));
        ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&EndingProcedure));
        ::SendMessageW(window, kEndMessage, 0, 0);
        ::WaitForSingleObject(thread, 20000);
        ::CloseHandle(thread);
    }
    return static_cast<int>(windows.size());
}

PluginFolder::PluginFolder()
    : before(std::filesystem::current_path()),
      create([this](SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE entry,
                    void* argument, DWORD flags, DWORD* id) -> HANDLE {
          if (threadsRefused) {
              return nullptr;
          }
          const HANDLE thread = create.CallOriginal(security, stack, entry, argument, flags, id);
          const std::lock_guard lock(mutex);
          threads.push_back(thread);
          return thread;
      })
{
    std::filesystem::create_directory(Path());
    std::filesystem::current_path(home.Path());
    stageOfThisProgram = this;
}

PluginFolder::~PluginFolder()
{
    for (const HANDLE thread : threads) {
        // While a tracker starts, it has no window yet.
        do {
            EndTrackers();
        } while (::WaitForSingleObject(thread, 10) == WAIT_TIMEOUT);
        ::CloseHandle(thread);
    }
    for (const auto& [plugin, behaviour] : behaviours) {
        while (const HMODULE module = ::GetModuleHandleW(Named(plugin).modulePath)) {
            ::FreeLibrary(module);
        }
    }
    stageOfThisProgram = nullptr;
    std::filesystem::current_path(before);
}

mox::PluginDescriptor PluginFolder::Add(const std::wstring& plugin, Behaviour behaviour)
{
    std::filesystem::copy_file(ProgramFolder() / "test_plugin.mox", Path() / (plugin + L".mox"));
    Replace(plugin, std::move(behaviour));
    return Named(plugin);
}

void PluginFolder::Replace(const std::wstring& plugin, Behaviour behaviour)
{
    const std::lock_guard lock(mutex);
    behaviours[plugin] = std::move(behaviour);
}

mox::PluginDescriptor PluginFolder::Named(const std::wstring& plugin)
{
    mox::PluginDescriptor descriptor = {};
    CopyToField(descriptor.modulePath, L".\\moxplugins\\" + plugin + L".mox");
    return descriptor;
}

bool PluginFolder::IsLoaded(const std::wstring& plugin)
{
    return ::GetModuleHandleW(Named(plugin).modulePath) != nullptr;
}

int PluginFolder::References(const std::wstring& plugin)
{
    const std::lock_guard lock(mutex);
    return references[plugin];
}

PluginEvents PluginFolder::Events()
{
    const std::lock_guard lock(mutex);
    PluginEvents shown = events;
    std::erase_if(shown, [](const auto& event) {
        return event.second == Operation::ReleaseDescriptor || event.second == Operation::ReleaseSource;
    });
    return shown;
}

std::vector<Operation> PluginFolder::EventsOf(const std::wstring& plugin)
{
    std::vector<Operation> operations;
    for (const auto& [name, operation] : Events()) {
        if (name == plugin) {
            operations.push_back(operation);
        }
    }
    return operations;
}

int PluginFolder::Count(const std::wstring& plugin, Operation operation)
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(std::ranges::count(events, std::pair(plugin, operation)));
}

void PluginFolder::ForgetEvents()
{
    const std::lock_guard lock(mutex);
    events.clear();
}

bool PluginFolder::Await(const std::wstring& plugin, Operation operation, int times)
{
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(20), [&] {
        return std::ranges::count(events, std::pair(plugin, operation)) >= times;
    });
}

const mox::PluginDescriptor* PluginFolder::EntryOf(const std::wstring& plugin)
{
    const std::lock_guard lock(mutex);
    return entries[plugin];
}

Behaviour PluginFolder::BehaviourOf(const std::wstring& plugin)
{
    const std::lock_guard lock(mutex);
    return behaviours[plugin];
}

void PluginFolder::Happened(const std::wstring& plugin, Operation operation)
{
    const std::lock_guard lock(mutex);
    events.emplace_back(plugin, operation);
    changed.notify_all();
}

void PluginFolder::CountReference(const std::wstring& plugin, int change)
{
    const std::lock_guard lock(mutex);
    references[plugin] += change;
}

void PluginFolder::TakeEntry(const std::wstring& plugin, const mox::PluginDescriptor* entry)
{
    const std::lock_guard lock(mutex);
    entries[plugin] = entry;
}

} // namespace kestraboot::tests

extern "C" __declspec(dllexport) kestraboot::tests::PluginStage* KestrabootPluginStage();

kestraboot::tests::PluginStage* KestrabootPluginStage()
{
    return kestraboot::tests::stageOfThisProgram;
}
