// The window's requests to the reader.
#include "picture_reader.h"

#include <utility>

void PictureReader::Want(std::size_t index)
{
    const std::scoped_lock lock(mutex);
    if (pictures[index].state != PictureState::Unreadable && queue.Want(index)) {
        work.notify_one();
    }
}

void PictureReader::SetStyle(const ThumbnailStyle& style)
{
    const std::scoped_lock lock(mutex);
    thumbnailStyle = style;
    thumbnails.clear();
}

void PictureReader::DriveIsGone()
{
    const std::scoped_lock lock(mutex);
    progress.gone = true;
    onChange();
}

std::deque<Thumbnail> PictureReader::TakeThumbnails()
{
    const std::scoped_lock lock(mutex);
    return std::exchange(thumbnails, {});
}

ReadingProgress PictureReader::Progress() const
{
    const std::scoped_lock lock(mutex);
    return progress;
}

Picture PictureReader::Get(std::size_t index) const
{
    const std::scoped_lock lock(mutex);
    return pictures[index];
}
