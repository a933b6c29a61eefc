#include "scale.h"

#include <algorithm>
#include <cmath>
#include <wrl/client.h>

using Microsoft::WRL::ComPtr;

PictureSize Fit(PictureSize picture, PictureSize space)
{
    const double ratio =
        std::min({1.0, double(space.width) / picture.width, double(space.height) / picture.height});
    const auto scaled = [ratio](unsigned length) {
        return std::max(1U, static_cast<unsigned>(std::floor(length * ratio)));
    };
    return {scaled(picture.width), scaled(picture.height)};
}

bool ServesFor(PictureSize small, PictureSize whole, PictureSize wanted)
{
    if (small.width < wanted.width || small.height < wanted.height || small.height == 0) {
        return false;
    }
    const double shape = double(small.width) / small.height;
    return std::abs(shape - double(whole.width) / whole.height) < 0.02;
}

bool Scale(IWICImagingFactory& factory, IWICBitmapSource& source, PictureSize wanted, Pixels& pixels)
{
    ComPtr<IWICBitmapScaler> scaler;
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(factory.CreateBitmapScaler(&scaler)) ||
        FAILED(factory.CreateFormatConverter(&converter)) ||
        FAILED(
            scaler->Initialize(&source, wanted.width, wanted.height, WICBitmapInterpolationModeFant)) ||
        FAILED(converter->Initialize(scaler.Get(), GUID_WICPixelFormat32bppPBGRA,
                                     WICBitmapDitherTypeNone, nullptr, 0, WICBitmapPaletteTypeCustom))) {
        return false;
    }
    Pixels scaled = {wanted.width, wanted.height, {}};
    scaled.values.resize(std::size_t{wanted.width} * wanted.height);
    const UINT row = wanted.width * 4;
    if (FAILED(converter->CopyPixels(nullptr, row, row * wanted.height,
                                     reinterpret_cast<BYTE*>(scaled.values.data())))) {
        return false;
    }
    pixels = std::move(scaled);
    return true;
}
