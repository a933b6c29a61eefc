#pragma once

#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// The path of a folder on Wine's host system, for the mount manager.
[[nodiscard]] std::string UnixPath(const std::filesystem::path& folder);

} // namespace kestraboot::tests
