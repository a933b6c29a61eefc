#include "tests/endurance/fuzz/random.h"

namespace kestraboot::fuzz
{
namespace
{

constexpr std::wstring_view kPlain = L"abcdefghijklmnopqrstuvwxyzABCXYZ0123456789";
constexpr std::wstring_view kAwkward = L"\"\"\"\\\\\\   \t\n\r%%{}|/:.,;*?<>='$&^@#~-+_()[]"
                                       L"\x01\x7F\x80\xA0\xC4\xDF\xE9\u0130\u0131\u03C2\u212A\u3042"
                                       L"\uFEFF\uFFFD\xFFFF\xD800\xDBFF\xDC00\xDFFF\xD83D\xDE00";

std::size_t Length(Random& random)
{
    const std::size_t kind = random.Below(100);
    if (kind < 8) {
        return 0;
    }
    if (kind < 85) {
        return random.Between(1, 20);
    }
    if (kind < 95) {
        return random.Between(20, 250);
    }
    return kind < 99 ? random.Between(256, 264) : random.Between(500, 3000);
}

} // namespace

std::wstring Random::Text()
{
    return TextOf(Length(*this));
}

std::wstring Random::TextOf(std::size_t length)
{
    const unsigned awkward = Pick({0U, 10U, 50U, 95U});
    std::wstring text;
    text.reserve(length);
    while (text.size() < length) {
        text += Pick(Chance(awkward) ? kAwkward : kPlain);
    }
    return text;
}

std::wstring Random::OtherCase(std::wstring_view text)
{
    std::wstring changed(text);
    for (wchar_t& character : changed) {
        const bool letter =
            (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z');
        if (letter && Chance(50)) {
            character ^= 0x20;
        }
    }
    return changed;
}

} // namespace kestraboot::fuzz
