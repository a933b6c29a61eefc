#include "launcher/start_line.h"

#include <utility>

namespace kestraboot
{

void StartLine::Add(std::initializer_list<std::wstring_view> pieces)
{
    std::size_t needed = 1; // the terminator
    for (const std::wstring_view piece : pieces) {
        needed += piece.size();
    }
    MakeRoom(length + needed);
    begins[count++] = length;
    for (const std::wstring_view piece : pieces) {
        length += piece.copy(text + length, piece.size());
    }
    text[length++] = L'\0';
}

const wchar_t* StartLine::Join() noexcept
{
    for (std::size_t i = 1; i < count; ++i) {
        text[begins[i] - 1] = L' ';
    }
    return text;
}

void StartLine::MakeRoom(std::size_t characters)
{
    if (characters <= room) {
        return;
    }
    auto larger = std::make_unique_for_overwrite<wchar_t[]>(2 * characters);
    std::wstring_view(text, length).copy(larger.get(), length);
    longer = std::move(larger);
    text = longer.get();
    room = 2 * characters;
}

std::wstring_view QuoteFor(std::wstring_view value) noexcept
{
    return value.starts_with(L'"') ? L"" : L"\"";
}

} // namespace kestraboot
