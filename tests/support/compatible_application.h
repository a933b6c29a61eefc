#pragma once

#include <string>

namespace kestraboot::tests
{

/// What an application's installer writes for it, below the keys that HKEY_LOCAL_MACHINE now means.
struct CompatibleApplication {
    std::wstring keyPath; ///< ends in \Corvane Kestrafetch
    std::wstring name = L"App";
    std::wstring proxyPath;
    std::wstring commandPath;
    std::wstring image = L"jpg";
};

void Register(const CompatibleApplication& application);

/// The full path of this test program.
[[nodiscard]] std::wstring RunningExecutable();

} // namespace kestraboot::tests
