// The window through which a running wia_service.exe takes requests.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace kestraboot::simulators
{

inline constexpr const wchar_t* kServiceWindow = L"KestrabootWiaSimulator"; ///< class and title

inline constexpr ULONG_PTR kFireConnect =
    1; ///< WM_COPYDATA: the identifier, in UTF-16, without terminator

/// Returns how many objects of a kind clients of the service hold.
inline constexpr UINT kCountMessage = WM_APP + 1;
enum class ServiceObjects : WPARAM { Managers, Registrations, Lists };

/// Lets the service fire the connect event of a device. False if it does not run.
inline bool TellServiceToFire(const std::wstring& deviceId)
{
    COPYDATASTRUCT data = {};
    data.dwData = kFireConnect;
    data.cbData = static_cast<DWORD>(deviceId.size() * sizeof(wchar_t));
    data.lpData = const_cast<wchar_t*>(deviceId.data()); // only read
    const HWND window = ::FindWindowW(kServiceWindow, kServiceWindow);
    return window != nullptr &&
           ::SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)) == TRUE;
}

/// -1 if it does not run.
inline long AskServiceForCount(ServiceObjects what)
{
    const HWND window = ::FindWindowW(kServiceWindow, kServiceWindow);
    return window == nullptr
               ? -1
               : static_cast<long>(::SendMessageW(window, kCountMessage, static_cast<WPARAM>(what), 0));
}

} // namespace kestraboot::simulators
