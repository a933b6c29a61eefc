#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace kestraboot
{

/// The command line of a started program, composed once. Its arguments are in one text, each
/// terminated by a zero, until Join puts blanks between them. Nothing is escaped. Memory is allocated
/// only for a line that is longer than usual.
class StartLine
{
public:
    static constexpr std::size_t kMostArguments = 6;
    static constexpr std::size_t kUsualLength = 512; ///< characters, the terminators included

    StartLine() noexcept = default;
    StartLine(const StartLine&) = delete; // it points into itself
    StartLine& operator=(const StartLine&) = delete;

    /// Adds one argument, made of these pieces. At most kMostArguments. Throws std::bad_alloc.
    void Add(std::initializer_list<std::wstring_view> pieces);

    /// Valid until the next Add, and until Join.
    [[nodiscard]] const wchar_t* Argument(std::size_t index) const noexcept
    {
        return &text[begins[index]];
    }

    /// The whole line. After this call there are no single arguments.
    [[nodiscard]] const wchar_t* Join() noexcept;

private:
    void MakeRoom(std::size_t characters);

    wchar_t usual[kUsualLength];
    std::unique_ptr<wchar_t[]> longer;
    wchar_t* text = usual;
    std::size_t room = kUsualLength;
    std::size_t length = 0;
    std::array<std::size_t, kMostArguments> begins = {};
    std::size_t count = 0;
};

/// The text before and after a text that puts it between double quotes: empty if it begins with
/// one.
[[nodiscard]] std::wstring_view QuoteFor(std::wstring_view value) noexcept;

} // namespace kestraboot
