// Text operations that more than one file needs.
#pragma once

#include <cstddef>
#include <cwchar>
#include <string>
#include <string_view>

namespace kestraboot
{

inline constexpr std::size_t kFieldCapacity = 260; ///< characters of a fixed field, terminator included

/// Fills a fixed field with `text`, cut so that a terminating zero always fits; the rest is zeroed.
template <std::size_t Capacity>
void CopyToField(wchar_t (&field)[Capacity], std::wstring_view text) noexcept
{
    const std::size_t copied = text.copy(field, Capacity - 1);
    std::wmemset(field + copied, L'\0', Capacity - copied);
}

/// The order of the C runtime's _wcsicmp, which is called only if a character is not ASCII: a call
/// costs ten times as much as reading a short file name.
[[nodiscard]] int CompareIgnoringCase(const wchar_t* left, const wchar_t* right) noexcept;

/// Whole strings, as the C runtime's _wcsicmp compares them.
[[nodiscard]] bool EqualIgnoringCase(const std::wstring& left, const std::wstring& right) noexcept;

/// `below` after `path` and a backslash. Allocates once: the number of allocations of operator+
/// differs from library to library.
[[nodiscard]] std::wstring JoinPath(std::wstring_view path, std::wstring_view below);

/// `text` unchanged if it begins with a double quote, otherwise between double quotes.
[[nodiscard]] std::wstring QuoteUnlessQuoted(const std::wstring& text);

} // namespace kestraboot
