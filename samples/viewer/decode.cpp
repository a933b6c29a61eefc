#include "decode.h"

#include "exif.h"
#include "scale.h"

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

std::vector<std::uint8_t> ReadBeginning(HANDLE file)
{
    std::vector<std::uint8_t> beginning(65'536);
    DWORD read = 0;
    ::ReadFile(file, beginning.data(), static_cast<DWORD>(beginning.size()), &read, nullptr);
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    beginning.resize(read);
    return beginning;
}

/// The first picture of a file, and its size; null if it has none.
ComPtr<IWICBitmapSource> FirstPicture(const ComPtr<IWICBitmapDecoder>& decoder, PictureSize& size)
{
    ComPtr<IWICBitmapFrameDecode> frame;
    if (FAILED(decoder->GetFrame(0, &frame)) || FAILED(frame->GetSize(&size.width, &size.height))) {
        return nullptr;
    }
    return frame;
}

ComPtr<IWICBitmapSource> OpenWhole(IWICImagingFactory& factory, HANDLE file, PictureSize& size)
{
    ComPtr<IWICBitmapDecoder> decoder;
    if (FAILED(factory.CreateDecoderFromFileHandle(reinterpret_cast<ULONG_PTR>(file), nullptr,
                                                   WICDecodeMetadataCacheOnDemand, &decoder))) {
        return nullptr;
    }
    return FirstPicture(decoder, size);
}

/// The small picture that a camera puts into the file. It is decoded in a hundredth of the time of the
/// whole one.
ComPtr<IWICBitmapSource> OpenEmbedded(IWICImagingFactory& factory, std::span<const std::uint8_t> jpeg,
                                      PictureSize& size)
{
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapDecoder> decoder;
    if (jpeg.empty() || FAILED(factory.CreateStream(&stream)) ||
        FAILED(stream->InitializeFromMemory(const_cast<BYTE*>(jpeg.data()), // which it only reads
                                            static_cast<DWORD>(jpeg.size()))) ||
        FAILED(factory.CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                               &decoder))) {
        return nullptr;
    }
    return FirstPicture(decoder, size);
}

bool IsPossible(PictureSize size)
{
    return size.width != 0 && size.height != 0 && std::uint64_t{size.width} * size.height <= kMostPixels;
}

bool ScaleEmbedded(IWICImagingFactory& factory, std::span<const std::uint8_t> jpeg, PictureSize whole,
                   PictureSize space, Pixels& pixels)
{
    PictureSize small;
    const PictureSize wanted = Fit(whole, space);
    const ComPtr<IWICBitmapSource> source = OpenEmbedded(factory, jpeg, small);
    return source && ServesFor(small, whole, wanted) && Scale(factory, *source.Get(), wanted, pixels);
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
    const bool swaps = exif.orientation >= 5;
    PictureSize space;
    if (style != nullptr) {
        space = {swaps ? style->height : style->width, swaps ? style->width : style->height};
    }
    Pixels pixels;
    // The header alone, where it serves: to learn the size, a decoder may decode the whole picture.
    const std::optional<PictureSize> stated = ReadJpegSize(beginning);
    PictureSize size = stated.value_or(PictureSize());
    if (stated && !IsPossible(size)) {
        return picture;
    }
    if (!stated || (style != nullptr && !ScaleEmbedded(factory, exif.thumbnail, size, space, pixels))) {
        const ComPtr<IWICBitmapSource> whole = OpenWhole(factory, file.get(), size);
        if (!whole || !IsPossible(size) ||
            (style != nullptr && !Scale(factory, *whole.Get(), Fit(size, space), pixels))) {
            return picture;
        }
    }
    picture.width = swaps ? size.height : size.width;
    picture.height = swaps ? size.width : size.height;
    picture.taken = exif.taken;
    if (style != nullptr) {
        picture.thumbnail =
            PutOnCanvas(Turn(pixels, exif.orientation), style->width, style->height, style->background);
    }
    picture.result = DecodeResult::Decoded;
    return picture;
}
