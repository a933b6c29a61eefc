#pragma once

#include "tests/support/import_patch.h"

#include <atomic>

namespace kestraboot::tests
{

/// Drives the volume tracker of the library by hand: its clock stops except for the polls that the test
/// requests, each of which is over when LookAgain returns. No other tracker starts. Made before the
/// service is started; it must outlive the tracker's thread, hence the process.
class TrackerClock
{
public:
    TrackerClock();
    TrackerClock(const TrackerClock&) = delete;
    TrackerClock& operator=(const TrackerClock&) = delete;

    /// Waits for the tracker's first poll. False if there is none.
    [[nodiscard]] bool AwaitFirstLook();

    /// The drives changed, and 500 ms passed: the tracker scans once, polling or not.
    [[nodiscard]] bool LookAgain();

private:
    [[nodiscard]] bool AwaitIdle() const;

    HANDLE idle;
    HWND window = nullptr;
    std::atomic<ULONGLONG> now = 1000; ///< milliseconds
    std::atomic<int> threadsStarted = 0;

    FAKE_IMPORT(CreateThread) threads;
    FAKE_IMPORT(GetTickCount64) clock;
    FAKE_IMPORT(Sleep) sleep;
    FAKE_IMPORT(MsgWaitForMultipleObjectsEx) wait;
};

} // namespace kestraboot::tests
