// The large interfaces of WIA with every operation unanswered, for objects that answer a few of them.
#pragma once

#include <windows.h>

#include <wia.h>

namespace kestraboot::simulators
{

// clang-format off
class UnansweredPropertyStorage : protected IWiaPropertyStorage
{
public:
    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG, const PROPSPEC[], PROPVARIANT[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WriteMultiple(ULONG, const PROPSPEC[], const PROPVARIANT[], PROPID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeleteMultiple(ULONG, const PROPSPEC[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReadPropertyNames(ULONG, const PROPID[], LPOLESTR[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WritePropertyNames(ULONG, const PROPID[], const LPOLESTR[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeletePropertyNames(ULONG, const PROPID[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Enum(IEnumSTATPROPSTG**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetTimes(const FILETIME*, const FILETIME*, const FILETIME*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATPROPSETSTG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyAttributes(ULONG, PROPSPEC[], ULONG[], PROPVARIANT[]) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCount(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyStream(GUID*, IStream**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPropertyStream(GUID*, IStream*) override { return E_NOTIMPL; }

protected:
    virtual ~UnansweredPropertyStorage() = default; ///< after the slots of the interface
};

class UnansweredDeviceManager : protected IWiaDevMgr
{
public:
    HRESULT STDMETHODCALLTYPE EnumDeviceInfo(LONG, IEnumWIA_DEV_INFO**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateDevice(BSTR, IWiaItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SelectDeviceDlg(HWND, LONG, LONG, BSTR*, IWiaItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SelectDeviceDlgID(HWND, LONG, LONG, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetImageDlg(HWND, LONG, LONG, LONG, IWiaItem*, BSTR, GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackProgram(LONG, BSTR, const GUID*, BSTR, BSTR, BSTR, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackInterface(LONG, BSTR, const GUID*, IWiaEventCallback*, IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackCLSID(LONG, BSTR, const GUID*, const GUID*, BSTR, BSTR, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddDeviceDlg(HWND, LONG) override { return E_NOTIMPL; }

protected:
    virtual ~UnansweredDeviceManager() = default; ///< after the slots of the interface
};

class UnansweredDeviceEnumerator : protected IEnumWIA_DEV_INFO
{
public:
    HRESULT STDMETHODCALLTYPE Next(ULONG, IWiaPropertyStorage**, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWIA_DEV_INFO**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCount(ULONG*) override { return E_NOTIMPL; }

protected:
    virtual ~UnansweredDeviceEnumerator() = default; ///< after the slots of the interface
};
// clang-format on

} // namespace kestraboot::simulators
