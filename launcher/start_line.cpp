#include "launcher/start_line.h"

namespace kestraboot
{

void StartLine::Add(std::initializer_list<std::wstring_view> pieces)
{
    if (count > 0) {
        text += L'\0';
    }
    begins[count++] = text.size();
    for (const std::wstring_view piece : pieces) {
        text += piece;
    }
}

const wchar_t* StartLine::Join() noexcept
{
    for (std::size_t i = 1; i < count; ++i) {
        text[begins[i] - 1] = L' ';
    }
    return text.c_str();
}

std::wstring_view QuoteFor(std::wstring_view value) noexcept
{
    return value.starts_with(L'"') ? L"" : L"\"";
}

} // namespace kestraboot
