#pragma once

#include <string>

namespace kestraboot::tests
{

/// The visible effects of one run, in order, one line each: trace lines, started programs, reports,
/// results. Takes no memory, so that it can be written while there is none. One for the process.
class Journal
{
public:
    static void Clear() noexcept;
    static void Add(const wchar_t* what, const wchar_t* text = L"") noexcept;
    static void AddNumber(const wchar_t* what, long long number) noexcept;

    /// Console output, which comes as characters: they are collected on a separate line.
    static void AddConsole(wchar_t character) noexcept;

    /// Nothing is added after this call: for the rest of a process that has exited.
    static void Stop() noexcept;

    /// For objects that outlive the process.
    static void GoOn() noexcept;

    /// With every mention of `folder` replaced by "<files>".
    [[nodiscard]] static std::string Text(const std::wstring& folder);
};

} // namespace kestraboot::tests
