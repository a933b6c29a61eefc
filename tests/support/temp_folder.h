#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kestraboot::tests
{

/// An empty folder of the test's own, removed with all its contents.
class TempFolder
{
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    [[nodiscard]] const std::filesystem::path& Path() const noexcept { return path; }

    /// Makes a file, and the folders above it, below this folder. Returns its full path.
    std::filesystem::path AddFile(const std::filesystem::path& relative,
                                  std::string_view contents = {}) const;

    std::filesystem::path AddFolder(const std::filesystem::path& relative) const;

private:
    std::filesystem::path path;
};

/// All bytes of a file; empty if it cannot be opened.
[[nodiscard]] std::string Contents(const std::filesystem::path& file);

} // namespace kestraboot::tests
