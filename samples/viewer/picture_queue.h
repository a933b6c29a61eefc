// The order in which pictures are decoded and read.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

/// First the pictures that were asked for, the newest request before older ones; then the facts of all
/// others, in their order. The caller locks it.
class PictureQueue
{
public:
    struct Task {
        std::size_t index = 0;
        bool isWanted = false; ///< its small picture; otherwise its facts alone

        bool operator==(const Task&) const = default;
    };

    /// So many pictures are known now. The new ones are unread.
    void Grow(std::size_t count) { read.resize(count); }

    /// A request is dropped if too many newer ones follow it. False if there is one already that is
    /// waiting or being worked on.
    bool Want(std::size_t index);

    /// The next task; nothing if all is done.
    std::optional<Task> Take();

    /// The facts of the picture are known. If it was wanted, it may be asked for again.
    void Finish(const Task& task);

private:
    std::vector<bool> read;
    std::size_t nextUnread = 0;
    std::vector<std::size_t> wanted; ///< the next one last
    std::set<std::size_t> asked;     ///< wanted, or being decoded for that
};
