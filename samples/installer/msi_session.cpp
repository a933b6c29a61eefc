#include "msi_session.h"

#include <msiquery.h>

std::wstring Property(MSIHANDLE install, const wchar_t* name)
{
    wchar_t none[1] = {};
    DWORD length = 0;
    if (::MsiGetPropertyW(install, name, none, &length) != ERROR_MORE_DATA) {
        return {};
    }
    std::wstring value(length + 1, L'\0');
    length = static_cast<DWORD>(value.size());
    if (::MsiGetPropertyW(install, name, value.data(), &length) != ERROR_SUCCESS) {
        return {};
    }
    value.resize(length);
    return value;
}

void Log(MSIHANDLE install, const std::wstring& text)
{
    const MSIHANDLE record = ::MsiCreateRecord(1);
    // The text is data, not a format: a path may hold brackets.
    ::MsiRecordSetStringW(record, 0, L"kestraboot: [1]");
    ::MsiRecordSetStringW(record, 1, text.c_str());
    ::MsiProcessMessage(install, INSTALLMESSAGE_INFO, record);
    ::MsiCloseHandle(record);
}
