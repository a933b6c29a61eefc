#pragma once

#include "trackers/volume/drive_watch.h"

#include <windows.h>

namespace kestraboot
{

/// What the tracker does on every trigger: scan, report the drive that became readable, and decide
/// whether to go on polling. One thread.
class VolumeScan
{
public:
    explicit VolumeScan(DriveWatch& watched) noexcept : watch(watched) {}

    /// Answers a trigger (a message, the start). While polling it does nothing: the next scan is at most
    /// half a second away. A trigger that comes from inside a scan (a host that pumps messages in
    /// its callback) is answered by one more scan after it, never by a nested one.
    void Trigger() noexcept;

    /// One scan, for the trigger and for each tick while polling.
    void Scan() noexcept;

    /// True while a removable drive exists: readers tell nothing of a card, so it has to be looked for.
    [[nodiscard]] bool Polling() const noexcept { return pollingMode; }

    /// Milliseconds until the next scan is due, 500 after the one before; INFINITE while not polling.
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
