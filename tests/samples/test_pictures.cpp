#include "tests/samples/test_pictures.h"

#include <windows.h>

#include <objbase.h>
#include <stdexcept>
#include <vector>
#include <wincodec.h>
#include <wrl/client.h>

namespace kestraboot::tests
{
namespace
{

using Microsoft::WRL::ComPtr;

void Check(HRESULT result)
{
    if (FAILED(result)) {
        throw std::runtime_error("no picture can be made: " + std::to_string(result));
    }
}

std::vector<BYTE> Gradient(unsigned width, unsigned height)
{
    std::vector<BYTE> pixels;
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            pixels.insert(pixels.end(), {static_cast<BYTE>(x * 255 / width),
                                         static_cast<BYTE>(y * 255 / height), 0x80});
        }
    }
    return pixels;
}

/// A number of a TIFF structure, little-endian.
std::string Number(std::size_t value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i, value >>= 8) {
        bytes += static_cast<char>(value & 0xFF);
    }
    return bytes;
}

/// An entry of a TIFF table.
std::string Entry(const std::string& tag, char type, std::size_t count, std::size_t value)
{
    return tag + type + '\0' + Number(count) + Number(value);
}

/// Adds a segment at the beginning.
std::string WithSegment(const std::string& jpeg, char kind, const std::string& contents)
{
    const std::size_t length = contents.size() + 2;
    return jpeg.substr(0, 2) + "\xFF" + kind + static_cast<char>(length >> 8) +
           static_cast<char>(length) + contents + jpeg.substr(2);
}

} // namespace

std::string MakeJpeg(unsigned width, unsigned height)
{
    static_cast<void>(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)); // for as long as the test runs
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    Check(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                             IID_PPV_ARGS(&factory)));
    Check(::CreateStreamOnHGlobal(nullptr, TRUE, &stream));
    Check(factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, &encoder));
    Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache));
    Check(encoder->CreateNewFrame(&frame, nullptr));
    Check(frame->Initialize(nullptr));
    Check(frame->SetSize(width, height));
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    Check(frame->SetPixelFormat(&format));
    std::vector<BYTE> pixels = Gradient(width, height);
    Check(frame->WritePixels(height, width * 3, static_cast<UINT>(pixels.size()), pixels.data()));
    Check(frame->Commit());
    Check(encoder->Commit());

    STATSTG facts = {};
    Check(stream->Stat(&facts, STATFLAG_NONAME));
    Check(stream->Seek({}, STREAM_SEEK_SET, nullptr));
    std::string bytes(static_cast<std::size_t>(facts.cbSize.QuadPart), '\0');
    ULONG read = 0;
    Check(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read));
    return bytes.substr(0, read);
}

std::string WithExif(const std::string& jpeg, const std::string& taken, char orientation)
{
    using namespace std::string_literals;
    std::string tiff = "II*\0\x08\0\0\0\x02\0"s +
                       Entry("\x12\x01"s, 3, 1, static_cast<std::size_t>(orientation)) +
                       Entry("\x69\x87"s, 4, 1, 38) + "\0\0\0\0"s;
    tiff += "\x01\0"s + Entry("\x03\x90"s, 2, 20, 56) + "\0\0\0\0"s + taken + '\0';
    return WithSegment(jpeg, '\xE1', "Exif\0\0"s + tiff);
}

std::string WithThumbnail(const std::string& jpeg, const std::string& small)
{
    using namespace std::string_literals;
    // An empty table for the whole picture, and a table of two entries for the small one behind it.
    const std::string tiff = "II*\0\x08\0\0\0"s + "\0\0"s + Number(14) + "\x02\0"s +
                             Entry("\x01\x02"s, 4, 1, 44) + Entry("\x02\x02"s, 4, 1, small.size()) +
                             Number(0) + small;
    return WithSegment(jpeg, '\xE1', "Exif\0\0"s + tiff);
}

std::string HeaderOf(const std::string& jpeg)
{
    return jpeg.substr(0, jpeg.find("\xFF\xDA"));
}

std::string WithLongHeader(const std::string& jpeg)
{
    return WithSegment(jpeg, '\xE4', std::string(65'533, 'x'));
}

void MakeSparseFile(const std::filesystem::path& file, long long bytes)
{
    std::filesystem::create_directories(file.parent_path());
    const HANDLE made =
        ::CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    LARGE_INTEGER end = {};
    end.QuadPart = bytes;
    const bool isLong = ::SetFilePointerEx(made, end, nullptr, FILE_BEGIN) && ::SetEndOfFile(made);
    ::CloseHandle(made);
    if (!isLong) {
        throw std::runtime_error("no file of that length");
    }
}

} // namespace kestraboot::tests
