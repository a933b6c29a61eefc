// The sample viewer as the boot program starts it for a device, and its windows.
#pragma once

#include "resource.h" // the viewer's own
#include "tests/samples/remote_window.h"
#include "tests/system/system_test.h"

#include <memory>

namespace kestraboot::tests
{

inline const std::wstring kChooserTitle = L"Choose an application";
inline const std::wstring kViewerTitle = L"Sample Viewer";
inline const std::wstring kCamera = L"devType=camera priDevId=\"Camera 1\"";

/// The command line of an application that was chosen for the camera.
inline const std::string kCameraReport = "mode: direct\ndevice: camera Camera 1\n";

class SampleWindows : public SystemTest
{
protected:
    ~SampleWindows() override { CloseAll(); }

    /// Starts a viewer with the boot program's command line.
    static std::unique_ptr<ChildProcess> StartFor(const Installation& application,
                                                  const std::wstring& mode,
                                                  const std::wstring& device = kCamera);

    /// A window of the process that shows this title; the test fails if none appears.
    static HWND AwaitShown(const ChildProcess& process, const std::wstring& title);

    /// Waits until an application has written its report, and closes its window.
    static testing::AssertionResult AwaitStarted(const Installation& application,
                                                 const std::string& report);

    /// Closes the windows of every running viewer, as a user does, and waits for their exits.
    static void CloseAll();
};

} // namespace kestraboot::tests
