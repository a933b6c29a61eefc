#pragma once

#include "trackers/volume/drive_watch.h"

#include <windows.h>

namespace kestraboot
{

/// The tracker's work on every trigger: scans, reports the drive that became readable, and decides
/// whether to poll. Use it from one thread.
class VolumeScan
{
public:
    explicit VolumeScan(DriveWatch& watched) noexcept : watch(watched) {}

    /// Handles a trigger (a message, the start). While polling it does nothing: the next scan is
    /// due within 500 ms. A trigger that comes from inside a scan (a host that pumps messages in
    /// its callback) causes one more scan after it, never a nested one.
    void Trigger() noexcept;

    /// One scan, for the trigger and for each tick while polling.
    void Scan() noexcept;

    /// True while a removable drive exists. A reader reports no card, so the tracker must poll it.
    [[nodiscard]] bool Polling() const noexcept { return pollingMode; }

    /// Milliseconds until the next scan is due, 500 after the previous one; INFINITE while not
    /// polling.
    [[nodiscard]] DWORD MillisecondsToNextScan() const noexcept;

private:
    void ReportNewDrive() const noexcept;
    void UpdatePollingMode() noexcept;

    DriveWatch& watch;
    bool pollingMode = false;
    bool scanning = false;
    bool scanAgain = false;
    ULONGLONG lastScanEnd = 0; ///< in the milliseconds of GetTickCount64
};

} // namespace kestraboot
