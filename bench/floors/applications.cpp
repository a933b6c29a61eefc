#include "bench/floors/applications.h"

#include <windows.h>
#include <cwchar>
#include <deque>
#include <shlwapi.h>
#include <string>

namespace kestraboot::bench
{
namespace
{

HKEY Open(HKEY root, const wchar_t* path, REGSAM access = KEY_READ)
{
    HKEY key = nullptr;
    return ::RegOpenKeyExW(root, path, 0, access, &key) == ERROR_SUCCESS ? key : nullptr;
}

/// A text is asked for its size first.
void ReadText(HKEY key, const wchar_t* name, wchar_t (&text)[512])
{
    DWORD type = REG_SZ;
    DWORD size = 0;
    ::RegQueryValueExW(key, name, nullptr, &type, nullptr, &size);
    size = sizeof text - sizeof(wchar_t);
    if (::RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) !=
        ERROR_SUCCESS) {
        size = 0;
    }
    text[size / sizeof(wchar_t)] = L'\0';
}

bool ReadNumber(HKEY root, const wchar_t* path, const wchar_t* name)
{
    const HKEY key = Open(root, path);
    if (key == nullptr) {
        return false;
    }
    DWORD type = REG_DWORD;
    DWORD number = 0;
    DWORD size = sizeof number;
    const LONG status =
        ::RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    ::RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

struct Files {
    std::wstring commandPath;
    std::wstring proxyPath;
    std::wstring preferences;
};

Files ReadApplication(const std::wstring& path)
{
    wchar_t text[512];
    Files files;
    const HKEY key = Open(HKEY_LOCAL_MACHINE, path.c_str());
    ReadText(key, L"Name", text);
    ReadText(key, L"ProxyPath", text);
    files.proxyPath = text;
    ReadText(key, L"Desc", text);
    ReadText(key, L"CmdLine", text);
    files.commandPath = text;
    ReadText(key, L"Icon", text);
    ::RegCloseKey(key);

    const std::wstring formats = path + L"\\File Formats";
    for (const wchar_t* const mediaType : {L"Image", L"Audio", L"Video"}) {
        const HKEY formatsKey = Open(HKEY_LOCAL_MACHINE, formats.c_str());
        ReadText(formatsKey, mediaType, text);
        ::RegCloseKey(formatsKey);
    }
    files.preferences = path + L"\\Preferences";
    ReadNumber(HKEY_CURRENT_USER, files.preferences.c_str(), L"DefaultFlag");
    return files;
}

struct OpenKey {
    HKEY key;
    std::wstring path;
};

} // namespace

int LoadApplications()
{
    std::deque<OpenKey> pending;
    std::deque<Files> found;
    const std::wstring root = L"SOFTWARE\\Corvane";
    pending.push_back({Open(HKEY_LOCAL_MACHINE, root.c_str()), root});
    while (!pending.empty()) {
        const OpenKey parent = std::move(pending.front());
        pending.pop_front();
        wchar_t name[128];
        FILETIME written;
        for (DWORD index = 0, length = 128; ::RegEnumKeyExW(parent.key, index, name, &length, nullptr,
                                                            nullptr, nullptr, &written) == ERROR_SUCCESS;
             ++index, length = 128) {
            std::wstring path = parent.path + L'\\' + name;
            if (std::wcscmp(name, L"Corvane Kestrafetch") == 0) {
                found.push_back(ReadApplication(path));
            } else if (const HKEY key = Open(HKEY_LOCAL_MACHINE, path.c_str())) {
                pending.push_back({key, std::move(path)});
            }
        }
        ::RegCloseKey(parent.key);
    }
    int kept = 0;
    for (const Files& files : found) {
        if (::PathFileExistsW(files.commandPath.c_str()) && ::PathFileExistsW(files.proxyPath.c_str())) {
            if (!ReadNumber(HKEY_CURRENT_USER, files.preferences.c_str(),
                            L"AutoLaunchOnDeviceConnect")) {
                ReadNumber(HKEY_LOCAL_MACHINE, files.preferences.c_str(), L"AutoLaunchOnDeviceConnect");
            }
            ++kept;
        }
    }
    return kept;
}

void ReadOwnPath()
{
    const HANDLE process = ::OpenProcess(PROCESS_ALL_ACCESS, FALSE, ::GetCurrentProcessId());
    HMODULE mainModule = nullptr;
    DWORD bytesNeeded = 0;
    const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
    const auto enumerate = reinterpret_cast<BOOL(WINAPI*)(HANDLE, HMODULE*, DWORD, DWORD*)>(
        reinterpret_cast<void*>(::GetProcAddress(kernel, "K32EnumProcessModules")));
    const auto readName = reinterpret_cast<DWORD(WINAPI*)(HANDLE, HMODULE, wchar_t*, DWORD)>(
        reinterpret_cast<void*>(::GetProcAddress(kernel, "K32GetModuleFileNameExW")));
    enumerate(process, &mainModule, sizeof mainModule, &bytesNeeded);
    wchar_t path[260];
    readName(process, mainModule, path, 259);
    ::CloseHandle(process);
}

void ReadUserNumber(const wchar_t* keyPath, const wchar_t* valueName)
{
    ReadNumber(HKEY_CURRENT_USER, keyPath, valueName);
}

void MaintainOrder(const wchar_t* proxyPath)
{
    LoadApplications();
    ReadOwnPath();
    static_cast<void>(::PathFileExistsW(proxyPath)); // the call alone counts
    const HKEY run =
        Open(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", KEY_WRITE);
    const std::wstring quoted = L'"' + std::wstring(proxyPath) + L'"';
    ::RegSetValueExW(run, L"Corvane Kestrafetch", 0, REG_SZ,
                     reinterpret_cast<const BYTE*>(quoted.c_str()),
                     static_cast<DWORD>(quoted.size() * sizeof(wchar_t)));
    ::RegCloseKey(run);
}

} // namespace kestraboot::bench
