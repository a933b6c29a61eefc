#include "decode.h"

#include "exif.h"
#include "jpeg_header.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <wrl/client.h>

namespace
{

using Microsoft::WRL::ComPtr;

struct ClosePicture {
    void operator()(void* file) const noexcept { ::CloseHandle(file); }
};

/// More than any camera takes, and less than memory holds.
constexpr std::uint64_t kMostPixels = 400'000'000;

/// The largest that fits into the space and is not larger than it was.
PictureSize Fit(PictureSize picture, PictureSize space)
{
    const double ratio =
        std::min({1.0, double(space.width) / picture.width, double(space.height) / picture.height});
    const auto scaled = [ratio](unsigned length) {
        return std::max(1U, static_cast<unsigned>(std::floor(length * ratio)));
    };
    return {scaled(picture.width), scaled(picture.height)};
}

/// Cameras put a small picture into the file. It serves where it is large enough and of the same shape.
ComPtr<IWICBitmapSource> SmallestSource(const ComPtr<IWICBitmapFrameDecode>& frame, PictureSize whole,
                                        PictureSize wanted)
{
    ComPtr<IWICBitmapSource> embedded;
    PictureSize small;
    if (SUCCEEDED(frame->GetThumbnail(&embedded)) &&
        SUCCEEDED(embedded->GetSize(&small.width, &small.height)) && small.width >= wanted.width &&
        small.height >= wanted.height && small.height > 0) {
        const double shape = double(small.width) / small.height;
        if (std::abs(shape - double(whole.width) / whole.height) < 0.02) {
            return embedded;
        }
    }
    return frame;
}

bool Scale(IWICImagingFactory& factory, const ComPtr<IWICBitmapSource>& source, PictureSize wanted,
           Pixels& pixels)
{
    ComPtr<IWICBitmapScaler> scaler;
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(factory.CreateBitmapScaler(&scaler)) ||
        FAILED(factory.CreateFormatConverter(&converter)) ||
        FAILED(scaler->Initialize(source.Get(), wanted.width, wanted.height,
                                  WICBitmapInterpolationModeFant)) ||
        FAILED(converter->Initialize(scaler.Get(), GUID_WICPixelFormat32bppPBGRA,
                                     WICBitmapDitherTypeNone, nullptr, 0, WICBitmapPaletteTypeCustom))) {
        return false;
    }
    pixels = {wanted.width, wanted.height, {}};
    pixels.values.resize(std::size_t{wanted.width} * wanted.height);
    const UINT row = wanted.width * 4;
    return SUCCEEDED(converter->CopyPixels(nullptr, row, row * wanted.height,
                                           reinterpret_cast<BYTE*>(pixels.values.data())));
}

std::vector<std::uint8_t> ReadBeginning(HANDLE file)
{
    std::vector<std::uint8_t> beginning(65'536);
    DWORD read = 0;
    ::ReadFile(file, beginning.data(), static_cast<DWORD>(beginning.size()), &read, nullptr);
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    beginning.resize(read);
    return beginning;
}

/// The first picture of a file; null if it has none.
ComPtr<IWICBitmapFrameDecode> OpenFrame(IWICImagingFactory& factory, HANDLE file)
{
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    if (FAILED(factory.CreateDecoderFromFileHandle(reinterpret_cast<ULONG_PTR>(file), nullptr,
                                                   WICDecodeMetadataCacheOnDemand, &decoder)) ||
        FAILED(decoder->GetFrame(0, &frame))) {
        return nullptr;
    }
    return frame;
}

bool IsPossible(PictureSize size)
{
    return size.width != 0 && size.height != 0 && std::uint64_t{size.width} * size.height <= kMostPixels;
}

} // namespace

DecodedPicture Decode(IWICImagingFactory& factory, const std::filesystem::path& path,
                      const ThumbnailStyle* style)
{
    DecodedPicture picture;
    const HANDLE opened = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        picture.result = DecodeResult::NotOpened;
        return picture;
    }
    const std::unique_ptr<void, ClosePicture> file(opened);
    const std::vector<std::uint8_t> beginning = ReadBeginning(file.get());
    const Exif exif = ReadExif(beginning);
    ComPtr<IWICBitmapFrameDecode> frame;
    // The header alone, where it serves, because a decoder may decode the whole picture to learn its
    // size.
    std::optional<PictureSize> size = style == nullptr ? ReadJpegSize(beginning) : std::nullopt;
    if (!size) {
        frame = OpenFrame(factory, file.get());
        size.emplace();
        if (!frame || FAILED(frame->GetSize(&size->width, &size->height))) {
            return picture;
        }
    }
    if (!IsPossible(*size)) {
        return picture;
    }
    const bool swaps = exif.orientation >= 5;
    picture.width = swaps ? size->height : size->width;
    picture.height = swaps ? size->width : size->height;
    picture.taken = exif.taken;
    if (style != nullptr) {
        const PictureSize space = {swaps ? style->height : style->width,
                                   swaps ? style->width : style->height};
        const PictureSize wanted = Fit(*size, space);
        Pixels pixels;
        if (!Scale(factory, SmallestSource(frame, *size, wanted), wanted, pixels)) {
            return picture;
        }
        picture.thumbnail =
            PutOnCanvas(Turn(pixels, exif.orientation), style->width, style->height, style->background);
    }
    picture.result = DecodeResult::Decoded;
    return picture;
}
