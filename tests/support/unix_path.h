#pragma once

#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// The path by which Wine's host system knows a folder; for the mount manager.
[[nodiscard]] std::string UnixPath(const std::filesystem::path& folder);

} // namespace kestraboot::tests
