// The processes that the library sees: the running program (some application's proxy), another instance
// of it with a boot window, and an unrelated program.
#pragma once

#include "tests/support/import_patch.h"

#include <windows.h>

#include <string>

namespace kestraboot::tests
{

void SetRunningProgram(const std::wstring& path);
void RestartProcesses() noexcept;

/// A handle that must be closed, of some process.
[[nodiscard]] HANDLE OpenSomeProcess() noexcept;

/// Steers the module under test while it lives.
struct ProcessPatches {
    ProcessPatches();
    ImportPatch open;
    LookupPatch modules, olderModules, path, olderPath;
    ImportPatch snapshot, first, next, end, windows, title, send;
};

} // namespace kestraboot::tests
