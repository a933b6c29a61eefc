#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::fuzz
{

/// The source of one case. The same seed gives the same case on every machine.
class Random
{
public:
    explicit Random(std::uint64_t seed) : engine(seed) {}

    [[nodiscard]] std::uint32_t Bits() { return static_cast<std::uint32_t>(engine() >> 32); }

    /// From 0 up to `limit` (at least 1), which is not reached.
    [[nodiscard]] std::size_t Below(std::size_t limit) { return engine() % limit; }

    [[nodiscard]] std::size_t Between(std::size_t first, std::size_t last)
    {
        return first + Below(last - first + 1);
    }

    [[nodiscard]] bool Chance(unsigned percent) { return Below(100) < percent; }

    template <typename List>
    [[nodiscard]] auto Pick(const List& list)
    {
        return *(std::data(list) + Below(std::size(list)));
    }

    template <typename Value>
    [[nodiscard]] Value Pick(std::initializer_list<Value> list)
    {
        return *(list.begin() + Below(list.size()));
    }

    /// Text that parsers and formatters dislike: quotes, blanks, backslashes, percent signs, controls,
    /// letters with odd cases, unpaired surrogates; never a zero. Mostly short, sometimes about as long
    /// as a path may be, seldom much longer.
    [[nodiscard]] std::wstring Text();

    [[nodiscard]] std::wstring TextOf(std::size_t length);

    /// The same text, with some ASCII letters in the other case.
    [[nodiscard]] std::wstring OtherCase(std::wstring_view text);

private:
    std::mt19937_64 engine;
};

} // namespace kestraboot::fuzz
