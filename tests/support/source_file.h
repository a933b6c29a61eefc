#pragma once

#include <filesystem>

namespace kestraboot::tests
{

/// Whether this program comes from the archive of tests, so that neither the source tree nor the build
/// folder is available.
[[nodiscard]] bool FromTheArchive();

/// A file or folder of the source tree that tests read, by its path in the tree. The archive of tests
/// contains these few in a folder of its own.
[[nodiscard]] std::filesystem::path SourceFile(const std::filesystem::path& relative);

} // namespace kestraboot::tests
