#pragma once

#include "picture_reader.h"
#include "theme.h"

#include <windows.h>

#include <commctrl.h>
#include <unordered_map>

/// The image list of the contact sheet: one picture that waits, one that is unreadable, and a bounded
/// number of small pictures. If all places are taken, the picture that was shown longest ago is dropped.
class Thumbnails
{
public:
    static constexpr int kWaiting = 0;
    static constexpr int kUnreadable = 1;

    Thumbnails(const ThumbnailStyle& shown, const Theme& theme);
    Thumbnails(const Thumbnails&) = delete;
    Thumbnails& operator=(const Thumbnails&) = delete;
    ~Thumbnails();

    [[nodiscard]] HIMAGELIST List() const { return list; }
    /// The place of a picture in the image list; kWaiting if it has none. It counts as shown now.
    int PlaceOf(std::size_t index);
    void Put(const Thumbnail& thumbnail);

private:
    struct Place {
        std::size_t index = 0;
        std::uint64_t shown = 0; ///< grows each time it is shown
    };

    void AddSign(const Theme& theme, bool isUnreadable);
    std::size_t FreePlace();

    ThumbnailStyle style;
    std::size_t mostPlaces;
    HIMAGELIST list;
    std::vector<Place> places; ///< the first is behind the two signs
    std::unordered_map<std::size_t, std::size_t> placeOf;
    std::uint64_t looks = 0;
};
