#include "trackers/volume/volume_scan.h"

#include "foundation/trace.h"
#include "service/device_kind.h"
#include "service/dispatch.h"
#include "service/media_sniffer.h"

#include <string>

namespace kestraboot
{

void VolumeScan::Trigger() noexcept
{
    if (scanning) {
        scanAgain = true;
    } else if (!pollingMode) {
        Scan();
    }
}

void VolumeScan::Scan() noexcept
{
    scanning = true;
    do {
        scanAgain = false;
        if (watch.DetectChange()) {
            ReportNewDrive();
        }
        UpdatePollingMode();
    } while (scanAgain && !pollingMode);
    scanning = false;
    lastScanEnd = ::GetTickCount64();
}

DWORD VolumeScan::MillisecondsToNextScan() const noexcept
{
    constexpr ULONGLONG kPollMilliseconds = 500;
    if (!pollingMode) {
        return INFINITE;
    }
    const ULONGLONG passed = ::GetTickCount64() - lastScanEnd;
    return passed < kPollMilliseconds ? static_cast<DWORD>(kPollMilliseconds - passed) : 0;
}

void VolumeScan::ReportNewDrive() const noexcept
{
    const std::optional<DrivePath> drive = watch.ChooseDriveToReport();
    if (!drive) {
        return;
    }
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|%ls>", drive->text);
    ::OutputDebugStringW(line);
    try {
        std::wstring deviceId = drive->text;
        if (CheckVolumeForMedia(deviceId)) {
            std::wstring kind = DeviceKindWord(DeviceKind::Volume);
            NotifyDeviceConnect(kind, deviceId);
        } else {
            ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><Launch not possible>.");
        }
    } catch (...) {
        // No memory for the report: this card is lost, the tracker goes on.
    }
}

void VolumeScan::UpdatePollingMode() noexcept
{
    const bool wasPolling = pollingMode;
    pollingMode = watch.RemovablePresent();
    if (!wasPolling && pollingMode) {
        ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><Entering in polling mode.>");
    }
    if (wasPolling && !pollingMode) {
        ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><Exiting from polling mode.>");
    }
}

} // namespace kestraboot
