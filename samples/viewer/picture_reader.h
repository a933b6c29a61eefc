// The pictures of a drive, found and decoded on threads of their own.
//
// One thread searches for them. As many threads as there are processors, four at most, decode: first the
// requested pictures, the newest request before older ones; meanwhile they read the facts of all others.
// The reader keeps the facts of a picture alone: it hands each small picture over once.
#pragma once

#include "decode.h"
#include "picture_files.h"
#include "picture_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

enum class PictureState { Unread, Read, Unreadable };

struct Picture {
    PictureFile file;
    PictureState state = PictureState::Unread;
    unsigned width = 0;
    unsigned height = 0;
    std::string taken; ///< as in Exif
};

struct Thumbnail {
    std::size_t index = 0; ///< of the picture
    Pixels pixels;         ///< empty if the picture is unreadable
};

struct ReadingProgress {
    std::size_t found = 0;
    std::size_t read = 0; ///< the unreadable ones among them
    std::size_t unreadable = 0;
    std::size_t unreadableFolders = 0;
    std::filesystem::path firstUnreadableFolder;
    bool searching = true;
    bool gone = false; ///< the drive was removed: nothing more is read
};

/// Any thread may call it. `changed` is called on its threads after each change.
class PictureReader
{
public:
    using Changed = std::function<void()>;
    /// Called once, on the searching thread, with everything that was found.
    using Searched = std::function<void(const std::vector<std::filesystem::path>&)>;

    PictureReader(std::filesystem::path drive, const ThumbnailStyle& style, Changed changed,
                  Searched searched);
    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;
    /// Waits for the picture that is being decoded.
    ~PictureReader();

    /// Asks for a small picture. It comes with TakeThumbnails(), unless newer requests displace this
    /// one.
    void Want(std::size_t index);
    void SetStyle(const ThumbnailStyle& wanted);
    void DriveIsGone();

    [[nodiscard]] std::deque<Thumbnail> TakeThumbnails();
    [[nodiscard]] ReadingProgress Progress() const;
    [[nodiscard]] Picture Get(std::size_t index) const;

private:
    struct Task {
        PictureQueue::Task task;
        std::filesystem::path file;
        ThumbnailStyle style;
    };

    void Search(const std::stop_token& stop);
    void DecodeAll(const std::stop_token& stop);
    std::optional<Task> NextTask(const std::stop_token& stop);
    std::optional<Task> TakeTask();
    void Finish(const PictureQueue::Task& task, DecodedPicture&& decoded);

    const std::filesystem::path root;
    const Changed onChange;
    const Searched onSearched;

    mutable std::mutex mutex; // of all that follows
    std::condition_variable_any work;
    std::vector<Picture> pictures;
    PictureQueue queue;
    std::deque<Thumbnail> thumbnails;
    ThumbnailStyle thumbnailStyle;
    ReadingProgress progress;

    std::vector<std::jthread> threads; // last: they end before the rest does
};
