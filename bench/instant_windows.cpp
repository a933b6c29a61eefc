#include "bench/instant_windows.h"

#include "bench/silenced.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace kestraboot::bench
{
namespace
{

using namespace std::literals;

// ---- The card

constexpr std::wstring_view kFileName = L"IMG_0000.TXT";

int filesListed = 0;

/// IMG_0000.TXT, IMG_0001.TXT and so on.
BOOL NextFile(WIN32_FIND_DATAW* entry) noexcept
{
    if (filesListed == InstantWindows::kFiles) {
        return FALSE;
    }
    wchar_t* const name = entry->cFileName;
    std::memcpy(name, kFileName.data(), (kFileName.size() + 1) * sizeof(wchar_t));
    for (int digit = 7, rest = filesListed; rest != 0; rest /= 10, --digit) {
        name[digit] = static_cast<wchar_t>(L'0' + rest % 10);
    }
    ++filesListed;
    return TRUE;
}

HANDLE WINAPI FindFirst(const wchar_t*, WIN32_FIND_DATAW* entry) noexcept
{
    filesListed = 0;
    entry->dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    NextFile(entry);
    return reinterpret_cast<HANDLE>(std::intptr_t{8});
}

BOOL WINAPI FindNext(HANDLE, WIN32_FIND_DATAW* entry) noexcept
{
    return NextFile(entry);
}

BOOL WINAPI FindEnd(HANDLE) noexcept
{
    return TRUE;
}

// ---- The drives

UINT WINAPI KeepErrorMode(UINT) noexcept
{
    return 0;
}

DWORD WINAPI ListDrives() noexcept
{
    return ((DWORD{1} << InstantWindows::kDrives) - 1) << 4; // from E: on
}

UINT WINAPI TellRemovable(const wchar_t*) noexcept
{
    return DRIVE_REMOVABLE;
}

BOOL WINAPI TellVolume(const wchar_t*, wchar_t* name, DWORD, DWORD*, DWORD*, DWORD*, wchar_t*,
                       DWORD) noexcept
{
    *name = L'\0';
    return TRUE;
}

ULONGLONG WINAPI TellTime() noexcept
{
    return 1000;
}

// ---- The registry: SOFTWARE\Corvane\Product10001\Corvane Kestrafetch and so on

const HKEY kRoot = reinterpret_cast<HKEY>(std::intptr_t{1});
const HKEY kProduct = reinterpret_cast<HKEY>(std::intptr_t{2});
const HKEY kOther = reinterpret_cast<HKEY>(std::intptr_t{3});

LONG WINAPI OpenKey(HKEY, const wchar_t* path, DWORD, REGSAM, HKEY* key) noexcept
{
    constexpr std::size_t kRootPath = L"SOFTWARE\\Corvane"sv.size();
    constexpr std::size_t kProductPath = kRootPath + L"\\Product10000"sv.size();
    // Reads no further than the first zero.
    *key = path[kRootPath] == L'\0' ? kRoot : path[kProductPath] == L'\0' ? kProduct : kOther;
    return ERROR_SUCCESS;
}

LONG WINAPI CloseKey(HKEY) noexcept
{
    return ERROR_SUCCESS;
}

LONG WINAPI NameSubkey(HKEY key, DWORD index, wchar_t* name, DWORD* capacity, DWORD*, wchar_t*, DWORD*,
                       FILETIME*) noexcept
{
    if (index >= (key == kRoot ? DWORD{InstantWindows::kApplications} : DWORD{1})) {
        return ERROR_NO_MORE_ITEMS;
    }
    const std::wstring_view wanted = key == kRoot ? L"Product10000"sv : L"Corvane Kestrafetch"sv;
    std::memcpy(name, wanted.data(), (wanted.size() + 1) * sizeof(wchar_t));
    if (key == kRoot) {
        name[10] = static_cast<wchar_t>(L'0' + index / 10);
        name[11] = static_cast<wchar_t>(L'0' + index % 10);
    }
    *capacity = static_cast<DWORD>(wanted.size());
    return ERROR_SUCCESS;
}

/// The texts of bench/scene.cpp.
std::wstring_view TextOf(const wchar_t* value) noexcept
{
    switch (value[0]) {
    case L'N':
        return L"Picture Organiser 10001"sv;
    case L'P':
        return L"C:\\Program Files\\Picture Organiser\\kestraboot.exe"sv;
    case L'D':
        return L"Download the pictures"sv;
    case L'C':
        return L"C:\\Program Files\\Picture Organiser\\organiser.exe"sv;
    case L'I':
        return value[1] == L'm' ? L"jpg jpeg jpe tif tiff bmp gif png"sv
                                : L"C:\\Program Files\\Picture Organiser\\organiser.exe,1"sv;
    case L'A':
        return L"mp3 wav wma"sv;
    default:
        return L"avi mov mpg mpeg wmv"sv;
    }
}

LONG WINAPI ReadValue(HKEY, const wchar_t* value, DWORD*, DWORD*, BYTE* data, DWORD* size) noexcept
{
    if (value[2] == L't') { // AutoLaunchOnDeviceConnect: not set by any user
        return ERROR_FILE_NOT_FOUND;
    }
    if (value[2] == L'f') { // DefaultFlag
        std::memset(data, 0, sizeof(DWORD));
        return ERROR_SUCCESS;
    }
    const std::wstring_view text = TextOf(value);
    *size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (data != nullptr) {
        std::memcpy(data, text.data(), *size);
    }
    return ERROR_SUCCESS;
}

BOOL WINAPI TellFile(const wchar_t*) noexcept
{
    return TRUE;
}

template <typename Function>
void* Answer(Function* function) noexcept
{
    return reinterpret_cast<void*>(function);
}

} // namespace

InstantWindows::InstantWindows()
    : patches{
          {"FindFirstFileW", Answer(FindFirst)},    {"FindNextFileW", Answer(FindNext)},
          {"FindClose", Answer(FindEnd)},           {"OutputDebugStringW", Answer(DropLine)},
          {"SetErrorMode", Answer(KeepErrorMode)},  {"GetLogicalDrives", Answer(ListDrives)},
          {"GetDriveTypeW", Answer(TellRemovable)}, {"GetVolumeInformationW", Answer(TellVolume)},
          {"GetTickCount64", Answer(TellTime)},     {"RegOpenKeyExW", Answer(OpenKey)},
          {"RegCloseKey", Answer(CloseKey)},        {"RegEnumKeyExW", Answer(NameSubkey)},
          {"RegQueryValueExW", Answer(ReadValue)},  {"PathFileExistsW", Answer(TellFile)},
      }
{
}

} // namespace kestraboot::bench
