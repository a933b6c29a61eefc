#include "bench/floors/applications.h"

#include <windows.h>
#include <cwchar>
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

/// The size of a text is queried first.
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

constexpr DWORD kPathCapacity = 512;

/// The path of a key, which grows and shrinks in place.
struct Path {
    wchar_t text[kPathCapacity] = L"SOFTWARE\\Corvane";
    std::size_t length = std::wcslen(text);

    void Add(const wchar_t* name)
    {
        text[length] = L'\\';
        std::wcscpy(text + length + 1, name); // the scenes' names are short
        length += 1 + std::wcslen(name);
    }
    void CutTo(std::size_t characters)
    {
        length = characters;
        text[length] = L'\0';
    }
};

/// Returns 1 for an application whose two files exist.
int ReadApplication(Path& path)
{
    wchar_t text[512];
    wchar_t proxyPath[512];
    wchar_t commandPath[512];
    const HKEY key = Open(HKEY_LOCAL_MACHINE, path.text);
    ReadText(key, L"Name", text);
    ReadText(key, L"ProxyPath", proxyPath);
    ReadText(key, L"Desc", text);
    ReadText(key, L"CmdLine", commandPath);
    ReadText(key, L"Icon", text);
    ::RegCloseKey(key);

    const std::size_t keyLength = path.length;
    path.Add(L"File Formats");
    for (const wchar_t* const mediaType : {L"Image", L"Audio", L"Video"}) {
        const HKEY formatsKey = Open(HKEY_LOCAL_MACHINE, path.text);
        ReadText(formatsKey, mediaType, text);
        ::RegCloseKey(formatsKey);
    }
    path.CutTo(keyLength);
    path.Add(L"Preferences");
    ReadNumber(HKEY_CURRENT_USER, path.text, L"DefaultFlag");
    if (!::PathFileExistsW(commandPath) || !::PathFileExistsW(proxyPath)) {
        return 0;
    }
    if (!ReadNumber(HKEY_CURRENT_USER, path.text, L"AutoLaunchOnDeviceConnect")) {
        ReadNumber(HKEY_LOCAL_MACHINE, path.text, L"AutoLaunchOnDeviceConnect");
    }
    return 1;
}

/// Depth first, so that neither a key nor its path waits in a queue.
int LoadBelow(HKEY parent, Path& path)
{
    int kept = 0;
    wchar_t name[128];
    FILETIME written;
    const std::size_t parentLength = path.length;
    for (DWORD index = 0, length = 128; ::RegEnumKeyExW(parent, index, name, &length, nullptr, nullptr,
                                                        nullptr, &written) == ERROR_SUCCESS;
         ++index, length = 128) {
        path.Add(name);
        if (std::wcscmp(name, L"Corvane Kestrafetch") == 0) {
            kept += ReadApplication(path);
        } else if (const HKEY key = Open(HKEY_LOCAL_MACHINE, path.text)) {
            kept += LoadBelow(key, path);
            ::RegCloseKey(key);
        }
        path.CutTo(parentLength);
    }
    return kept;
}

} // namespace

int LoadApplications()
{
    Path path;
    const HKEY root = Open(HKEY_LOCAL_MACHINE, path.text);
    const int kept = LoadBelow(root, path);
    ::RegCloseKey(root);
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
