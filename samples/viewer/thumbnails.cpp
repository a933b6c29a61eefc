#include "thumbnails.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr std::size_t kSigns = 2;
constexpr std::size_t kMemory = 32 << 20; ///< bytes of pixels
constexpr std::size_t kLeastPlaces = 128; ///< more than a large screen shows at the highest DPI

HBITMAP MakeBitmap(unsigned width, unsigned height, void** pixels)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = -static_cast<LONG>(height); // from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    return ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, pixels, nullptr, 0);
}

} // namespace

Thumbnails::Thumbnails(const ThumbnailStyle& shown, const Theme& theme)
    : style(shown),
      mostPlaces(std::max(kLeastPlaces, kMemory / (std::size_t{4} * shown.width * shown.height))),
      list(::ImageList_Create(static_cast<int>(shown.width), static_cast<int>(shown.height), ILC_COLOR32,
                              static_cast<int>(mostPlaces + kSigns), 0))
{
    AddSign(theme, false);
    AddSign(theme, true);
}

Thumbnails::~Thumbnails()
{
    ::ImageList_Destroy(list);
}

/// A frame; with a cross if there is nothing to wait for.
void Thumbnails::AddSign(const Theme& theme, bool isUnreadable)
{
    const int width = static_cast<int>(style.width);
    const int height = static_cast<int>(style.height);
    void* pixels = nullptr;
    const HBITMAP bitmap = MakeBitmap(style.width, style.height, &pixels);
    const HDC context = ::CreateCompatibleDC(nullptr);
    const HGDIOBJ bitmapBefore = ::SelectObject(context, bitmap);
    const HPEN pen =
        ::CreatePen(PS_SOLID, 1, theme.dark ? RGB(0x80, 0x80, 0x80) : RGB(0xA0, 0xA0, 0xA0));
    const HBRUSH brush = ::CreateSolidBrush(theme.field);
    const HGDIOBJ penBefore = ::SelectObject(context, pen);
    const HGDIOBJ brushBefore = ::SelectObject(context, brush);
    ::PatBlt(context, 0, 0, width, height, PATCOPY);
    ::Rectangle(context, width / 8, height / 8, width - width / 8, height - height / 8);
    if (isUnreadable) {
        ::MoveToEx(context, width / 8, height / 8, nullptr);
        ::LineTo(context, width - width / 8, height - height / 8);
        ::MoveToEx(context, width - width / 8 - 1, height / 8, nullptr);
        ::LineTo(context, width / 8 - 1, height - height / 8);
    }
    ::SelectObject(context, penBefore);
    ::SelectObject(context, brushBefore);
    ::SelectObject(context, bitmapBefore);
    ::DeleteDC(context);
    ::DeleteObject(pen);
    ::DeleteObject(brush);
    auto* const values = static_cast<std::uint32_t*>(pixels);
    for (std::size_t i = 0; i < std::size_t{style.width} * style.height; ++i) {
        values[i] |= 0xFF000000; // GDI leaves it see-through
    }
    ::ImageList_Add(list, bitmap, nullptr);
    ::DeleteObject(bitmap);
}

int Thumbnails::PlaceOf(std::size_t index)
{
    const auto found = placeOf.find(index);
    if (found == placeOf.end()) {
        return kWaiting;
    }
    places[found->second].shown = ++looks;
    return static_cast<int>(found->second + kSigns);
}

std::size_t Thumbnails::FreePlace()
{
    if (places.size() < mostPlaces) {
        places.emplace_back();
        return places.size() - 1;
    }
    const auto oldest = std::ranges::min_element(places, {}, &Place::shown);
    placeOf.erase(oldest->index);
    return static_cast<std::size_t>(oldest - places.begin());
}

void Thumbnails::Put(const Thumbnail& thumbnail)
{
    const Pixels& pixels = thumbnail.pixels;
    if (pixels.width != style.width || pixels.height != style.height) {
        return; // unreadable, or made before the size changed
    }
    void* room = nullptr;
    const HBITMAP bitmap = MakeBitmap(style.width, style.height, &room);
    if (bitmap == nullptr) {
        return; // it is requested again when it is shown
    }
    std::memcpy(room, pixels.values.data(), pixels.values.size() * sizeof pixels.values.front());
    const auto known = placeOf.find(thumbnail.index);
    const std::size_t place = known == placeOf.end() ? FreePlace() : known->second;
    const int image = static_cast<int>(place + kSigns);
    if (image < ::ImageList_GetImageCount(list)) {
        ::ImageList_Replace(list, image, bitmap, nullptr);
    } else {
        ::ImageList_Add(list, bitmap, nullptr);
    }
    ::DeleteObject(bitmap);
    places[place] = {thumbnail.index, ++looks};
    placeOf[thumbnail.index] = place;
}
