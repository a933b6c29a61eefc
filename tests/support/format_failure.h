// A C runtime that fails to format wide text. No text that a test can write causes this failure.
#pragma once

#include "tests/support/import_patch.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace kestraboot::tests
{

/// During its lifetime, the wide formatter of the module under test writes half a line and fails.
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

#if defined(_UCRT) // there it implements both of msvcrt's functions
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
