#include "record_icon.h"

#include <cstdlib>
#include <cwchar>
#include <shlobj.h>

namespace
{

/// Null if the file does not exist or has no such icon.
HICON Extract(const std::wstring& file, int index, int size)
{
    HICON icon = nullptr;
    const HRESULT result =
        ::SHDefExtractIconW(file.c_str(), index, 0, &icon, nullptr, static_cast<UINT>(size));
    return result == S_OK ? icon : nullptr;
}

/// "file,index": the index is a number, with or without blanks before it. A name may hold commas too.
HICON ExtractReference(const std::wstring& reference, int size)
{
    const std::size_t comma = reference.rfind(L',');
    if (comma != std::wstring::npos) {
        wchar_t* end = nullptr;
        const long index = std::wcstol(reference.c_str() + comma + 1, &end, 10);
        if (*end == L'\0' && end != reference.c_str() + comma + 1) {
            return Extract(reference.substr(0, comma), static_cast<int>(index), size);
        }
    }
    return reference.empty() ? nullptr : Extract(reference, 0, size);
}

} // namespace

HICON LoadRecordIcon(const std::wstring& reference, const std::wstring& program, int size)
{
    HICON icon = ExtractReference(reference, size);
    if (icon == nullptr) {
        icon = Extract(program, 0, size);
    }
    return icon != nullptr ? icon : ::CopyIcon(::LoadIconW(nullptr, IDI_APPLICATION));
}
