#pragma once

#include <string>

namespace kestraboot::tests
{

/// What is seen of one run from outside, in order, one line each: trace lines, started programs,
/// reports, results. Takes no memory, so that it can be written to while there is none. One for the
/// process.
class Journal
{
public:
    static void Clear() noexcept;
    static void Add(const wchar_t* what, const wchar_t* text = L"") noexcept;
    static void AddNumber(const wchar_t* what, long long number) noexcept;

    /// Console output, which comes in characters: they gather on a line of their own.
    static void AddConsole(wchar_t character) noexcept;

    /// Nothing is added from here on: for the rest of a process that has ended.
    static void Stop() noexcept;

    /// For what outlives the process.
    static void GoOn() noexcept;

    /// With every mention of `folder` replaced by "<files>".
    [[nodiscard]] static std::string Text(const std::wstring& folder);
};

} // namespace kestraboot::tests
