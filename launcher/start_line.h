#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kestraboot
{

/// The command line of a started program, composed once. Its arguments are in one text, each
/// terminated by a zero, until Join puts blanks between them. Nothing is escaped.
class StartLine
{
public:
    static constexpr std::size_t kMostArguments = 6;

    /// Allocates so many characters at once; the line may become longer.
    explicit StartLine(std::size_t characters) { text.reserve(characters); }

    /// Adds one argument, made of these pieces. At most kMostArguments.
    void Add(std::initializer_list<std::wstring_view> pieces);

    /// Valid until the next Add, and until Join.
    [[nodiscard]] const wchar_t* Argument(std::size_t index) const noexcept
    {
        return text.c_str() + begins[index];
    }

    /// The whole line. After this call there are no single arguments.
    [[nodiscard]] const wchar_t* Join() noexcept;

private:
    std::wstring text;
    std::array<std::size_t, kMostArguments> begins = {};
    std::size_t count = 0;
};

/// The text before and after a text that puts it between double quotes: empty if it begins with
/// one.
[[nodiscard]] std::wstring_view QuoteFor(std::wstring_view value) noexcept;

} // namespace kestraboot
