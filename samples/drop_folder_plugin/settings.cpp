#include "settings.h"

#include "no_boxes.h"
#include "texts.h"
#include "trace.h"

namespace
{

constexpr std::size_t kLongestFolder = 247; // Windows' own limit for the path of a folder

bool Refuse(const std::wstring& value, const wchar_t* why)
{
    Trace(value, why);
    return false;
}

/// "C:\..." or "\\server\share...". A drive alone is a volume, which the host detects itself.
bool IsFullPath(const std::wstring& path)
{
    const bool onDrive = path.size() > 3 && path[1] == L':' && path[2] == L'\\';
    const bool onServer =
        path.size() > 4 && path.compare(0, 2, L"\\\\") == 0 && path.find(L'\\', 3) != std::wstring::npos;
    return (onDrive || onServer) && path.find_first_of(L"\"<>|*?") == std::wstring::npos;
}

bool ReadFolder(std::wstring& folder)
{
    // Text of either kind, with the variables of REG_EXPAND_SZ expanded and a terminating zero in any
    // case.
    wchar_t text[kLongestFolder + 1] = {};
    DWORD bytes = sizeof text;
    if (::RegGetValueW(HKEY_CURRENT_USER, texts::kKey, texts::kFolderValue, RRF_RT_REG_SZ, nullptr, text,
                       &bytes) != ERROR_SUCCESS) {
        return Refuse(texts::kFolderValue, texts::kNoValue);
    }
    folder = text;
    while (!folder.empty() && folder.back() == L'\\') {
        folder.pop_back(); // it would hide the quotation mark that follows on the application's command
                           // line
    }
    if (!IsFullPath(folder)) {
        return Refuse(text, texts::kNotFullPath);
    }
    const NoBoxes noBoxes;
    const DWORD attributes = ::GetFileAttributesW(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return Refuse(folder, texts::kNotFolder);
    }
    return true; // one that is not there may come
}

/// A missing value leaves `duration` unchanged.
bool ReadDuration(const wchar_t* value, DWORD& duration)
{
    DWORD found = 0;
    DWORD bytes = sizeof found;
    const LSTATUS status =
        ::RegGetValueW(HKEY_CURRENT_USER, texts::kKey, value, RRF_RT_REG_DWORD, nullptr, &found, &bytes);
    if (status == ERROR_FILE_NOT_FOUND) {
        return true;
    }
    if (status != ERROR_SUCCESS || found < 100 || found > 3'600'000) {
        return Refuse(value, texts::kBadDuration);
    }
    duration = found;
    return true;
}

} // namespace

bool ReadSettings(Settings& settings)
{
    return ReadFolder(settings.folder) && ReadDuration(texts::kSettleValue, settings.settle) &&
           ReadDuration(texts::kRetryValue, settings.retry);
}
