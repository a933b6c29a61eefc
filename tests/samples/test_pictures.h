// Pictures for the sample viewer.
#pragma once

#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// A JPEG file of that size, in colours.
[[nodiscard]] std::string MakeJpeg(unsigned width, unsigned height);

/// The same with a camera's additional data: the time of the picture ("2026:11:21 13:26:59"), and the
/// orientation (1 to 8).
[[nodiscard]] std::string WithExif(const std::string& jpeg, const std::string& taken, char orientation);

/// The same with a small picture, as cameras add it.
[[nodiscard]] std::string WithThumbnail(const std::string& jpeg, const std::string& small);

/// Its header alone: it states the size, but there is nothing to decode.
[[nodiscard]] std::string HeaderOf(const std::string& jpeg);

/// The same with its size behind the first 64 KB, after a segment that a program may keep there.
[[nodiscard]] std::string WithLongHeader(const std::string& jpeg);

/// A file that needs no room on the disk but has that length when it is read.
void MakeSparseFile(const std::filesystem::path& file, long long bytes);

} // namespace kestraboot::tests
