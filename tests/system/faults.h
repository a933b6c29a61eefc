#pragma once

#include "tests/system/installation.h"

#include <windows.h>
#include <string>

namespace kestraboot::tests
{

/// Lets calls of an installation's boot program be seen, fail or hang, while it lives: in each that is
/// started meanwhile. `what` is that of tests/stand_ins/faulty_library.
class Faults
{
public:
    Faults(const Installation& installed, const wchar_t* what)
    {
        installed.Put(L"faulty/kestraboot.dll", L"kestraboot.dll");
        ::SetEnvironmentVariableW(L"KESTRABOOT_FAULTS", what);
    }
    Faults(const Faults&) = delete;
    Faults& operator=(const Faults&) = delete;
    ~Faults() { ::SetEnvironmentVariableW(L"KESTRABOOT_FAULTS", nullptr); }
};

} // namespace kestraboot::tests
