#pragma once

#include "picture_reader.h"
#include "theme.h"

#include <windows.h>

#include <commctrl.h>
#include <unordered_map>

/// The image list of the contact sheet: one picture that waits, one that is unreadable, and a bounded
/// number of small pictures. When all places are taken, the one goes whose picture was shown longest
/// ago.
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
    /// The place of a picture in the image list; kWaiting where it is not there. It counts as shown now.
    int PlaceOf(std::size_t index);
    void Put(const Thumbnail& thumbnail);

private:
    struct Place {
        std::size_t index = 0;
        std::uint64_t shown = 0; ///< grows with each look
    };

    void AddSign(const Theme& theme, bool isUnreadable);
    std::size_t FreePlace();

    ThumbnailStyle style;
    HIMAGELIST list;
    std::size_t mostPlaces;
    std::vector<Place> places; ///< the first is behind the two signs
    std::unordered_map<std::size_t, std::size_t> placeOf;
    std::uint64_t looks = 0;
};
