// wia_service.exe: simulates the WIA service, as a COM local server of its own process.
//
//   wia_service register     makes it the WIA device manager of this Wine prefix (for good: use a prefix
//                            of your own); wia_device_list.dll must be beside it. Refused on Windows:
//                            no device would be found there any more
// COM starts it by itself at the first client. A text file "wia_devices.txt" beside it (see
// configuration.h for other places) holds a line for each device that WIA lists:
//   camera ID | scanner ID | video ID | NUMBER ID     (NUMBER: the whole device type, 0x...)
// Lines that make it fail:
//   no-list               the devices cannot be listed
//   refuse-registration   nobody can register for events
// To plug a device in: write its line, then run
//   wia_connect ID        fires the connect event of that device to everyone who registered
// It exits with the prefix.
#include "../common/version.h"
#include "class_factory.h"
#include "com_registration.h"
#include "device_list.h"
#include "device_manager.h"
#include "event_registrations.h"
#include "service_window.h"
#include "trackers/wia/wia_identifiers.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <deque>
#include <string>
#include <utility>

namespace
{

using namespace kestraboot;
using namespace kestraboot::simulators;

constexpr UINT kFireMessage = WM_APP + 2; ///< no parameters: fires the first of toFire

long CountOf(ServiceObjects what)
{
    switch (what) {
    case ServiceObjects::Managers:
        return LiveManagers();
    case ServiceObjects::Registrations:
        return LiveRegistrations();
    case ServiceObjects::Lists:
        return LiveListObjects();
    }
    return -1;
}

std::deque<std::wstring> toFire; ///< identifiers, one for each kFireMessage on its way

LRESULT CALLBACK ServiceProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COPYDATA) {
        const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        if (data.dwData != kFireConnect) {
            return FALSE;
        }
        // Not from here: COM does not call out while a message is being answered.
        toFire.emplace_back(static_cast<const wchar_t*>(data.lpData), data.cbData / sizeof(wchar_t));
        return ::PostMessageW(window, kFireMessage, 0, 0);
    }
    if (message == kFireMessage) {
        const std::wstring id = std::move(toFire.front());
        toFire.pop_front();
        FireConnectEvent(id);
        return 0;
    }
    if (message == kCountMessage) {
        return CountOf(static_cast<ServiceObjects>(wParam));
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

/// Two clients that come at the same time each make Wine's COM start a service. One of them serves; the
/// other waits until that one has ended. It must not exit, because its client would then give up.
bool BecomeTheOnlyOne()
{
    const HANDLE serving = ::CreateMutexW(nullptr, FALSE, kServiceWindow); // held until the process ends
    return serving != nullptr && ::WaitForSingleObject(serving, INFINITE) != WAIT_FAILED;
}

int Serve()
{
    if (!BecomeTheOnlyOne()) {
        return 1;
    }
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = ServiceProcedure;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kServiceWindow;
    ClassFactory factory(MakeDeviceManager);
    DWORD registered = 0;
    // Calls come in on threads of COM's own, so that firing an event does not hold them up.
    if (::RegisterClassW(&windowClass) == 0 ||
        ::CreateWindowExW(0, kServiceWindow, kServiceWindow, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                          windowClass.hInstance, nullptr) == nullptr ||
        FAILED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)) ||
        FAILED(::CoRegisterClassObject(kClsidWiaDevMgr, factory.Interface(), CLSCTX_LOCAL_SERVER,
                                       REGCLS_MULTIPLEUSE, &registered))) {
        return 1;
    }
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::DispatchMessageW(&message);
    }
    ::CoRevokeClassObject(registered);
    ::CoUninitialize();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (AnsweredVersion("wia_service", argc, argv)) {
        return 0;
    }
    const std::string argument = argc > 1 ? argv[1] : "";
    if (argument == "register" && !IsOnWine()) {
        std::fputs("wia_service: this is Windows, whose own WIA service stays\n", stderr);
        return 1;
    }
    if (argument == "register") {
        return RegisterForCom() ? 0 : 1;
    }
    if (argument == "-Embedding" || argument == "/Embedding") { // as COM starts it
        return Serve();
    }
    std::fputs("usage: wia_service register\n", stderr);
    return 2;
}
