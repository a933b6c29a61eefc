// One picture, decoded by the Windows Imaging Component.
#pragma once

#include "canvas.h"

#include <windows.h>

#include <filesystem>
#include <string>
#include <wincodec.h>

/// How a small picture is made.
struct ThumbnailStyle {
    unsigned width = 0; ///< in pixels
    unsigned height = 0;
    std::uint32_t background = 0; ///< 0xRRGGBB
};

enum class DecodeResult {
    Decoded,
    NotOpened, ///< the file cannot be opened: it, or the whole drive, may be gone
    Broken,    ///< it holds no picture that can be decoded, or one too large to be one
};

struct DecodedPicture {
    DecodeResult result = DecodeResult::Broken;
    unsigned width = 0; ///< as it is to be seen, turned
    unsigned height = 0;
    std::string taken; ///< as in Exif
    Pixels thumbnail;  ///< empty if none was requested
};

/// `style`: null if only the facts are requested. Nothing is left open.
DecodedPicture Decode(IWICImagingFactory& factory, const std::filesystem::path& file,
                      const ThumbnailStyle* style);
