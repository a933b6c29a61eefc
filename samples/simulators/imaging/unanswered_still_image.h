// IStillImageW with every operation unanswered, for objects that answer a few of them. For one source
// file of a program or library.
#pragma once

#include <windows.h>

#include <sti.h>

// clang-format off
// The header of this toolchain leaves these operations without a body.
inline HRESULT IStillImageW::GetDeviceValue(LPWSTR, LPWSTR, LPDWORD, LPBYTE, LPDWORD) { return E_NOTIMPL; }
inline HRESULT IStillImageW::SetDeviceValue(LPWSTR, LPWSTR, DWORD, LPBYTE, DWORD) { return E_NOTIMPL; }
inline HRESULT IStillImageW::LaunchApplicationForDevice(LPWSTR, LPWSTR, LPSTINOTIFY) { return E_NOTIMPL; }
inline HRESULT IStillImageW::SetupDeviceParameters(PSTI_DEVICE_INFORMATIONW) { return E_NOTIMPL; }

namespace kestraboot::simulators
{

/// Its one reference is never given back.
class UnansweredStillImage : protected IStillImageW
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override { *object = nullptr; return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetDeviceList(DWORD, DWORD, DWORD*, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDeviceInfo(LPWSTR, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateDevice(LPWSTR, DWORD, PSTIDEVICE*, IUnknown*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSTILaunchInformation(LPWSTR, DWORD*, LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterLaunchApplication(LPWSTR, LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnregisterLaunchApplication(LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnableHwNotifications(LPCWSTR, WINBOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHwNotificationState(LPCWSTR, WINBOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RefreshDeviceBus(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WriteToErrorLog(DWORD, LPCWSTR) override { return E_NOTIMPL; }

protected:
    virtual ~UnansweredStillImage() = default; ///< after the slots of the interface
};

} // namespace kestraboot::simulators
// clang-format on
