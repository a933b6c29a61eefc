#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kestraboot
{

/// The command line of a program that is started, composed once: its arguments lie in one text, each
/// ended by a zero, until they are joined by blanks. Nothing is escaped.
class StartLine
{
public:
    static constexpr std::size_t kMostArguments = 6;

    /// Takes memory for so many characters at once; it may become longer.
    explicit StartLine(std::size_t characters) { text.reserve(characters); }

    /// One more argument, made of these pieces. No more than kMostArguments.
    void Add(std::initializer_list<std::wstring_view> pieces);

    /// Valid until the next Add, and until Join.
    [[nodiscard]] const wchar_t* Argument(std::size_t index) const noexcept
    {
        return text.c_str() + begins[index];
    }

    /// The whole line. There are no single arguments any more.
    [[nodiscard]] const wchar_t* Join() noexcept;

private:
    std::wstring text;
    std::array<std::size_t, kMostArguments> begins = {};
    std::size_t count = 0;
};

/// What goes before and behind a text to put it between double quotes: nothing where it begins with one.
[[nodiscard]] std::wstring_view QuoteFor(std::wstring_view value) noexcept;

} // namespace kestraboot
