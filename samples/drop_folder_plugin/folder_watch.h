#pragma once

#include "change_feed.h"
#include "handle.h"
#include "pictures.h"
#include "settings.h"

#include "kestraboot/mox_plugin.h"

/// Watches a folder on a thread of its own and reports it when pictures have settled in it.
///
/// Windows' reports of changes decide when to list the pictures of the folder, not which are new: those
/// that were not in the list before are new. So it does not matter how many changes one picture makes,
/// whether their list overflows, or what happens while the folder is away. Once no change
/// has come for the settling time, and nobody has any of the new pictures open for writing, all of them
/// are one report.
class FolderWatch
{
public:
    /// Adds a reference to the callback.
    FolderWatch(const Settings& settings, kestraboot::mox::ICallbackInterface* callback);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    /// Ends the thread and waits for it, then releases the callback.
    ~FolderWatch();

    [[nodiscard]] bool Start();

    [[nodiscard]] kestraboot::mox::ICallbackInterface* Callback() const noexcept { return callback; }

private:
    static DWORD WINAPI Thread(LPVOID self);
    void Run();
    void WatchWhileThere();
    [[nodiscard]] bool BeginWith(ChangeFeed& feed);
    [[nodiscard]] bool LookAndReport();
    void TellBusy(const std::wstring& picture);

    const Settings settings;
    kestraboot::mox::ICallbackInterface* const callback;
    Handle ending;
    Handle thread;
    Pictures known;             // were there at the beginning, or are reported
    bool beginningSeen = false; // whether `known` holds what was there at the beginning
    bool absenceTold = false;
    std::wstring busyTold; // the picture that the report waits for
};
