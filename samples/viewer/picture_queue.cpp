#include "picture_queue.h"

namespace
{

constexpr std::size_t kMostWanted = 512; ///< more than a screen shows

} // namespace

bool PictureQueue::Want(std::size_t index)
{
    if (!asked.insert(index).second) {
        return false;
    }
    wanted.push_back(index);
    if (wanted.size() > kMostWanted) {
        asked.erase(wanted.front());
        wanted.erase(wanted.begin());
    }
    return true;
}

std::optional<PictureQueue::Task> PictureQueue::Take()
{
    if (!wanted.empty()) {
        const std::size_t index = wanted.back();
        wanted.pop_back();
        return Task{index, true};
    }
    while (nextUnread < read.size() && read[nextUnread]) {
        ++nextUnread;
    }
    if (nextUnread == read.size()) {
        return std::nullopt;
    }
    return Task{nextUnread++, false};
}

void PictureQueue::Finish(const Task& task)
{
    read[task.index] = true;
    if (task.isWanted) {
        asked.erase(task.index);
    }
}
