#include "tools/ctl/files.h"
#include "tools/ctl/look/look.h"

#include <windows.h>
#include <cstring>
#include <winver.h>

namespace kestraboot::tools
{
namespace
{

/// The whole version resource; empty if there is none. Windows reads the file as data.
std::vector<std::uint8_t> VersionResource(const std::wstring& file)
{
    DWORD unused = 0;
    const DWORD size = ::GetFileVersionInfoSizeW(file.c_str(), &unused);
    if (size == 0) {
        if (::GetLastError() == ERROR_ACCESS_DENIED) {
            TellUnread("read the version of", file);
        }
        return {};
    }
    std::vector<std::uint8_t> resource(size);
    if (!::GetFileVersionInfoW(file.c_str(), 0, size, resource.data())) {
        TellUnread("read the version of", file);
        return {};
    }
    return resource;
}

} // namespace

FileVersion VersionOf(const std::wstring& file)
{
    const std::vector<std::uint8_t> resource = VersionResource(file);
    void* found = nullptr;
    UINT size = 0;
    VS_FIXEDFILEINFO fixed = {};
    if (resource.empty() || !::VerQueryValueW(resource.data(), L"\\", &found, &size) ||
        found == nullptr || size < sizeof fixed) {
        return std::nullopt;
    }
    std::memcpy(&fixed, found, sizeof fixed);
    if (fixed.dwSignature != VS_FFI_SIGNATURE) {
        return std::nullopt;
    }
    return std::to_wstring(HIWORD(fixed.dwFileVersionMS)) + L"." +
           std::to_wstring(LOWORD(fixed.dwFileVersionMS)) + L"." +
           std::to_wstring(HIWORD(fixed.dwFileVersionLS)) + L"." +
           std::to_wstring(LOWORD(fixed.dwFileVersionLS));
}

std::wstring OriginalNameOf(const std::wstring& file)
{
    const std::vector<std::uint8_t> resource = VersionResource(file);
    void* found = nullptr;
    UINT size = 0;
    if (resource.empty() ||
        !::VerQueryValueW(resource.data(), L"\\VarFileInfo\\Translation", &found, &size) ||
        found == nullptr || size < 2 * sizeof(WORD)) {
        return {};
    }
    WORD translation[2] = {}; // language and code page
    std::memcpy(translation, found, sizeof translation);
    wchar_t path[64] = {};
    ::wsprintfW(path, L"\\StringFileInfo\\%04x%04x\\OriginalFilename", translation[0], translation[1]);
    if (!::VerQueryValueW(resource.data(), path, &found, &size) || found == nullptr) {
        return {};
    }
    const std::wstring name(static_cast<const wchar_t*>(found), size); // the terminator may count
    return name.substr(0, name.find(L'\0'));
}

} // namespace kestraboot::tools
