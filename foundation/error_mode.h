#pragma once

#include <windows.h>

namespace kestraboot
{

/// Keeps a process error mode (SEM_ flags of winbase.h) in force while it lives, then restores the one
/// before. The mode belongs to the whole process, not to the thread.
class ErrorModeScope
{
public:
    explicit ErrorModeScope(UINT mode) noexcept : previous(::SetErrorMode(mode)) {}
    ErrorModeScope(const ErrorModeScope&) = delete;
    ErrorModeScope& operator=(const ErrorModeScope&) = delete;
    ~ErrorModeScope() { ::SetErrorMode(previous); }

private:
    UINT previous;
};

} // namespace kestraboot
