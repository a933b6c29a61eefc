#pragma once

#include "tests/system/installation.h"

#include <windows.h>
#include <string>

namespace kestraboot::tests
{

/// During its lifetime records, fails or blocks calls of an installation's boot program, in each process
/// that starts meanwhile. `what` has the syntax of tests/stand_ins/faulty_library.
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
