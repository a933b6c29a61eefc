#pragma once

#include <windows.h>
#include <filesystem>

namespace kestraboot::tests
{

/// The folder of this program. The build puts the other programs and the plugin files there.
[[nodiscard]] inline std::filesystem::path ProgramFolder()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

} // namespace kestraboot::tests
