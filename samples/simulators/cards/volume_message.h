// The message that Windows sends when a card comes or goes: WM_DEVICECHANGE with a header that names the
// drive. Windows never sends one without, and Wine from version 10 on drops one without on its way to
// another process.
#pragma once

#include <windows.h>

#include <dbt.h>

namespace kestraboot::simulators
{

/// The header for a card in the reader at `letter`, L'A' to L'Z'.
inline DEV_BROADCAST_VOLUME VolumeHeader(wchar_t letter) noexcept
{
    DEV_BROADCAST_VOLUME header = {};
    header.dbcv_size = sizeof header;
    header.dbcv_devicetype = DBT_DEVTYP_VOLUME;
    header.dbcv_unitmask = DWORD{1} << (letter - L'A');
    header.dbcv_flags = DBTF_MEDIA; // the reader stays
    return header;
}

/// Sends `event`, DBT_DEVICEARRIVAL or DBT_DEVICEREMOVECOMPLETE (neither can be posted). False when the
/// window did not answer in time; of a broadcast nobody's answer counts.
inline bool SendVolumeMessage(HWND window, WPARAM event, wchar_t letter, UINT flags, UINT milliseconds,
                              DWORD_PTR* answer = nullptr) noexcept
{
    DEV_BROADCAST_VOLUME header = VolumeHeader(letter);
    return ::SendMessageTimeoutW(window, WM_DEVICECHANGE, event, reinterpret_cast<LPARAM>(&header),
                                 flags, milliseconds, answer) != 0;
}

} // namespace kestraboot::simulators
