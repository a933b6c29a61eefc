#pragma once

#include "tests/support/host_process.h"

namespace kestraboot::tests
{

/// A running imaging_host.exe (or a copy under another name). Its service has started.
class ImagingHostProcess : public HostProcess
{
public:
    explicit ImagingHostProcess(const std::wstring& program);

    /// Returns when all earlier output of the host is here. Returns false if the host does not answer.
    [[nodiscard]] bool CatchUp();

    /// Notifies its still-image tracker that the device tree changed. Returns false if the tracker's
    /// window does not appear.
    [[nodiscard]] bool NotifyDeviceChange();

    /// The same; returns when the tracker has handled it and the tracker's output about it is here.
    [[nodiscard]] bool ServeDeviceChange();

    /// Whether it has the still-image tracker's window.
    [[nodiscard]] bool HasTrackerWindow();

private:
    [[nodiscard]] bool AwaitTrackerWindow();

    HWND trackerWindow = nullptr;
    int questions = 0;
};

} // namespace kestraboot::tests
