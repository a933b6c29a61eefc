// The auto-run entry of the boot program.
#pragma once

#include <string>

/// Empty if there is none.
std::wstring AutoRun();

/// Restores the entry, or deletes it if `line` is empty. Returns the outcome, for the log.
std::wstring SetAutoRun(const std::wstring& line);
