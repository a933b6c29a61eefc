#pragma once

#include <windows.h>

namespace kestraboot
{

/// Keeps an error mode (SEM_ flags of winbase.h) in force for the whole process while it lives.
///
/// The mode belongs to the process, and scopes of several threads overlap: while any lives, the mode is
/// that of all of them together. The first one of the process remembers the mode before, the last one
/// restores it, whichever threads they are on. Usable while the library loads.
class ErrorModeScope
{
public:
    explicit ErrorModeScope(UINT mode) noexcept;
    ErrorModeScope(const ErrorModeScope&) = delete;
    ErrorModeScope& operator=(const ErrorModeScope&) = delete;
    ~ErrorModeScope();

private:
    UINT mode;
};

} // namespace kestraboot
