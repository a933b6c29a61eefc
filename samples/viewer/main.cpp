// A sample compatible application: it is started when a device arrives. README.md says what it shows.
#include "chooser.h"
#include "device_window.h"
#include "report.h"
#include "resource.h"
#include "sheet.h"

#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <shlwapi.h>

namespace
{

constexpr int kDone = 0;
constexpr int kFailed = 1; ///< no window, or no report
constexpr int kUsage = 2;  ///< arguments that are no request

int ExitCode(bool reported, INT_PTR closedWith)
{
    return reported && closedWith != -1 ? kDone : kFailed;
}

/// A plugin may call anything a volume, so only a drive is opened.
bool IsDrive(const std::wstring& identifier)
{
    return identifier.size() == 2 && identifier[1] == L':' &&
           ((identifier[0] >= L'A' && identifier[0] <= L'Z') ||
            (identifier[0] >= L'a' && identifier[0] <= L'z'));
}

int ShowRequest(const std::wstring& start, const LaunchRequest& request)
{
    if (request.mode != L"select" && request.deviceType == L"volume" && IsDrive(request.deviceId)) {
        return ShowSheet(request.deviceId, start) ? kDone : kFailed;
    }
    const bool reported = AppendToReport(start);
    if (request.mode == L"select") {
        return ExitCode(reported, Chooser(request).Run(IDD_CHOOSER));
    }
    return ExitCode(reported, DeviceWindow(request).Run(IDD_DEVICE));
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    const std::wstring commandLine = ::GetCommandLineW();
    const std::optional<LaunchRequest> request = ParseLaunchRequest(commandLine);
    const std::wstring start = DescribeStart(commandLine, request);
    if (!request && *::PathGetArgsW(commandLine.c_str()) != L'\0') {
        return AppendToReport(start) ? kUsage : kFailed;
    }
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
    if (!::InitCommonControlsEx(&controls) ||
        FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
        return kFailed;
    }
    const int code = request ? ShowRequest(start, *request)
                             : ExitCode(AppendToReport(start), DeviceWindow(request).Run(IDD_DEVICE));
    ::CoUninitialize();
    return code;
}
