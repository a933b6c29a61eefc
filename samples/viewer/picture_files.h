// Which files of a drive are pictures.
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

/// Looks through a folder and all below it, by the names' extensions. Links are not followed, nor are
/// the folders that Windows hides as its own.
///
/// `found` is called once for each folder with pictures, which are in the order of their names; where it
/// answers false, the search ends. Answers the folders that could not be read.
std::vector<std::filesystem::path>
FindPictures(const std::filesystem::path& root,
             const std::function<bool(std::vector<PictureFile>&&)>& found);
