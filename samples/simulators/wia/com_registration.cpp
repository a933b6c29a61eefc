#include "com_registration.h"

#include "device_list.h"
#include "trackers/wia/wia_identifiers.h"

#include <windows.h>

#include <string>

namespace kestraboot::simulators
{
namespace
{

std::wstring KeyOf(const CLSID& classId)
{
    wchar_t text[64] = {};
    ::StringFromGUID2(classId, text, 64);
    return std::wstring(L"Software\\Classes\\CLSID\\") + text;
}

bool SetDefault(const std::wstring& key, const wchar_t* name, const std::wstring& text)
{
    return ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                             static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

} // namespace

bool IsOnWine()
{
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool RegisterForCom()
{
    wchar_t path[1024] = {};
    ::GetModuleFileNameW(nullptr, path, 1023);
    const std::wstring program = path;
    const std::wstring folder = program.substr(0, program.find_last_of(L'\\') + 1);
    const std::wstring manager = KeyOf(kClsidWiaDevMgr);
    const std::wstring handler = KeyOf(kDeviceListClass) + L"\\InprocServer32";
    // With an application identity COM would start the service that belongs to it.
    ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, manager.c_str(), L"AppID");
    return SetDefault(manager + L"\\LocalServer32", nullptr, program) &&
           SetDefault(handler, nullptr, folder + L"wia_device_list.dll") &&
           SetDefault(handler, L"ThreadingModel", L"Both");
}

} // namespace kestraboot::simulators
