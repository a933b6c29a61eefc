#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The data that a camera writes beside the picture.
struct Exif {
    std::string taken;                       ///< "2026:11:21 13:26:59"; empty if it is missing
    unsigned orientation = 1;                ///< 1 to 8: how the picture is to be turned
    std::span<const std::uint8_t> thumbnail; ///< in the file: a small JPEG; empty if it is missing
};

/// Reads it from the beginning of a JPEG or TIFF file. Reads nothing beyond `file`, even if the contents
/// are invalid. (Windows' own decoders can read it too; this reads the date before anything is decoded.)
Exif ReadExif(std::span<const std::uint8_t> file);
