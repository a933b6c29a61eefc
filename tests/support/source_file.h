#pragma once

#include <filesystem>

namespace kestraboot::tests
{

/// Whether this program comes from the archive of tests: no source tree and no build folder is at hand.
[[nodiscard]] bool FromTheArchive();

/// A file or folder of the source tree that tests read, by its path in the tree. The archive of tests
/// has these few in a folder of its own.
[[nodiscard]] std::filesystem::path SourceFile(const std::filesystem::path& relative);

} // namespace kestraboot::tests
