// A C runtime that formats no wide text, which no text that one can write brings about.
#pragma once

#include "tests/support/import_patch.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace kestraboot::tests
{

/// While it lives, the wide formatter of the module under test writes half a line and fails.
class FormatFailure
{
public:
    FormatFailure() = default;
    FormatFailure(const FormatFailure&) = delete;
    FormatFailure& operator=(const FormatFailure&) = delete;

private:
    static int Fail(wchar_t* buffer)
    {
        if (buffer != nullptr) {
            buffer[0] = L'?';
        }
        return -1;
    }

#if defined(_UCRT) // both of msvcrt's functions are made of this one there
    FAKE_IMPORT(__stdio_common_vswprintf)
    formats{[](unsigned long long, wchar_t* buffer, std::size_t, const wchar_t*, _locale_t, va_list) {
        return Fail(buffer);
    }};
#else
    FAKE_IMPORT(_vsnwprintf)
    formats{[](wchar_t* buffer, std::size_t, const wchar_t*, va_list) {
        return Fail(buffer);
    }};
    FAKE_IMPORT(_vscwprintf)
    measures{[](const wchar_t*, va_list) {
        return Fail(nullptr);
    }};
#endif
};

} // namespace kestraboot::tests
