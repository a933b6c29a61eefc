#include "foundation/text.h"

namespace kestraboot
{
namespace
{

constexpr wchar_t kAsciiEnd = 0x80;

constexpr int AsciiLower(wchar_t character) noexcept
{
    return character >= L'A' && character <= L'Z' ? character + (L'a' - L'A') : character;
}

} // namespace

int CompareIgnoringCase(const wchar_t* left, const wchar_t* right) noexcept
{
    for (;; ++left, ++right) {
        if (*left >= kAsciiEnd || *right >= kAsciiEnd) {
            return _wcsicmp(left, right);
        }
        const int difference = AsciiLower(*left) - AsciiLower(*right);
        if (difference != 0 || *left == L'\0') {
            return difference;
        }
    }
}

bool EqualIgnoringCase(const std::wstring& left, const std::wstring& right) noexcept
{
    return _wcsicmp(left.c_str(), right.c_str()) == 0;
}

std::wstring JoinPath(std::wstring_view path, std::wstring_view below)
{
    std::wstring joined;
    joined.reserve(path.size() + 1 + below.size());
    joined.append(path).append(1, L'\\').append(below);
    return joined;
}

std::wstring QuoteUnlessQuoted(const std::wstring& text)
{
    return text.starts_with(L'"') ? text : L'"' + text + L'"';
}

} // namespace kestraboot
