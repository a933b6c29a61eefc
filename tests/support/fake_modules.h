// The modules of a process, as the test defines Windows' answers.
#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::tests
{

using FakeModuleList =
    FakeLookup<"K32EnumProcessModules", BOOL(HANDLE, HMODULE* modules, DWORD room, DWORD* needed)>;
using FakeModuleName =
    FakeLookup<"K32GetModuleFileNameExW", DWORD(HANDLE, HMODULE, wchar_t* name, DWORD room)>;

} // namespace kestraboot::tests
