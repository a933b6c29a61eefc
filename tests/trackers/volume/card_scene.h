#pragma once

#include "tests/support/compatible_application.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/volume/steered_drives.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

/// Everything between a card and the host's callback: an installed application, a machine with a fixed
/// disk C:, cards whose contents the test sets, a callback that keeps its events, and a Sleep that does
/// not wait.
class CardScene
{
public:
    using Event = std::pair<std::wstring, std::wstring>;

    CardScene();
    CardScene(const CardScene&) = delete;
    CardScene& operator=(const CardScene&) = delete;
    ~CardScene();

    void InsertCard(wchar_t letter, bool withPicture = true);
    void TakeCardOut(wchar_t letter); ///< the reader stays
    void UnplugReader(wchar_t letter);

    [[nodiscard]] std::vector<Event> Events() const;

    /// The lengths of the product's sleeps, in milliseconds.
    [[nodiscard]] std::vector<DWORD> Sleeps() const;

    /// Called in the host's callback, after it has kept the event.
    std::function<void()> whileReporting;

    SteeredDrives machine;
    TraceRecorder trace;

private:
    static void Keep(std::wstring& kind, std::wstring& deviceId);

    mutable std::mutex mutex;
    std::set<wchar_t> withPictures;
    std::vector<Event> events;
    std::vector<DWORD> sleeps;

    RegistrySandbox registry;
    TempFolder files;
    FAKE_IMPORT(Sleep) sleep;
    FAKE_IMPORT(FindFirstFileW) listing;
    FAKE_IMPORT(FindNextFileW) endOfListing;
    FAKE_IMPORT(FindClose) closing;
};

/// The trace lines of a card with or without a picture, until the polling mode is checked.
[[nodiscard]] std::vector<std::wstring> LinesOfACard(wchar_t letter, bool withPicture);

inline const std::wstring kEnteringPolling =
    L"<***DeviceConnect***><VolumeTracker><Entering in polling mode.>";
inline const std::wstring kExitingPolling =
    L"<***DeviceConnect***><VolumeTracker><Exiting from polling mode.>";

} // namespace kestraboot::tests
