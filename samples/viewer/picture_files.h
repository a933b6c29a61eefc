// The pictures among the files of a drive.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

struct PictureFile {
    std::filesystem::path path;
    std::uint64_t size = 0; ///< in bytes
};

/// Searches a folder and all below it, by the names' extensions. Does not follow links, nor enter the
/// folders that Windows hides as its own.
///
/// Calls `found` once for each folder with pictures, which are in the order of their names; if `found`
/// returns false, the search ends. Returns the folders that could not be read.
std::vector<std::filesystem::path>
FindPictures(const std::filesystem::path& root,
             const std::function<bool(std::vector<PictureFile>&&)>& found);
