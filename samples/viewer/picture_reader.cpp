#include "picture_reader.h"

#include <algorithm>
#include <objbase.h>
#include <wrl/client.h>

PictureReader::PictureReader(std::filesystem::path drive, const ThumbnailStyle& style, Changed changed,
                             Searched searched)
    : root(std::move(drive)), onChange(std::move(changed)), onSearched(std::move(searched)),
      thumbnailStyle(style)
{
    threads.emplace_back([this](const std::stop_token& stop) noexcept {
        Search(stop);
    });
    const unsigned decoders = std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
    for (unsigned i = 0; i < decoders; ++i) {
        threads.emplace_back([this](const std::stop_token& stop) noexcept {
            DecodeAll(stop);
        });
    }
}

PictureReader::~PictureReader()
{
    for (std::jthread& thread : threads) {
        thread.request_stop();
    }
}

void PictureReader::Search(const std::stop_token& stop)
{
    std::vector<std::filesystem::path> all;
    const auto add = [&](std::vector<PictureFile>&& files) {
        const std::scoped_lock lock(mutex);
        for (PictureFile& file : files) {
            all.push_back(file.path);
            Picture picture;
            picture.file = std::move(file);
            pictures.push_back(std::move(picture));
        }
        progress.found = pictures.size();
        queue.Grow(pictures.size());
        work.notify_all();
        onChange();
        return !stop.stop_requested() && !progress.gone;
    };
    const std::vector<std::filesystem::path> unreadable = FindPictures(root, add);
    onSearched(all);
    const std::scoped_lock lock(mutex);
    progress.searching = false;
    progress.gone = progress.gone || ::GetFileAttributesW(root.c_str()) == INVALID_FILE_ATTRIBUTES;
    progress.unreadableFolders = unreadable.size();
    progress.firstUnreadableFolder = unreadable.empty() ? std::filesystem::path() : unreadable.front();
    onChange();
}

void PictureReader::DecodeAll(const std::stop_token& stop)
{
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
    const bool hasCom = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    {
        Microsoft::WRL::ComPtr<IWICImagingFactory> factory;
        const bool canDecode = SUCCEEDED(::CoCreateInstance(
            CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&factory)));
        while (std::optional<Task> task = NextTask(stop)) {
            const ThumbnailStyle* const style = task->task.isWanted ? &task->style : nullptr;
            Finish(task->task, canDecode ? Decode(*factory.Get(), task->file, style) : DecodedPicture());
        }
    }
    if (hasCom) {
        ::CoUninitialize();
    }
}

std::optional<PictureReader::Task> PictureReader::NextTask(const std::stop_token& stop)
{
    std::unique_lock lock(mutex);
    std::optional<Task> task;
    work.wait(lock, stop, [&] {
        task = TakeTask();
        return task.has_value();
    });
    return stop.stop_requested() ? std::nullopt : task;
}

std::optional<PictureReader::Task> PictureReader::TakeTask()
{
    if (progress.gone) {
        return std::nullopt;
    }
    const std::optional<PictureQueue::Task> task = queue.Take();
    if (!task) {
        return std::nullopt;
    }
    return Task{*task, pictures[task->index].file.path, thumbnailStyle};
}

void PictureReader::Finish(const PictureQueue::Task& task, DecodedPicture&& decoded)
{
    // A removed drive makes no picture unreadable.
    const bool gone = decoded.result != DecodeResult::Decoded &&
                      ::GetFileAttributesW(root.c_str()) == INVALID_FILE_ATTRIBUTES;
    const std::scoped_lock lock(mutex);
    queue.Finish(task);
    progress.gone = progress.gone || gone;
    Picture& picture = pictures[task.index];
    // A header alone does not disprove that a picture cannot be decoded.
    if (!gone && (task.isWanted || picture.state == PictureState::Unread)) {
        progress.read += picture.state == PictureState::Unread ? 1 : 0;
        progress.unreadable -= picture.state == PictureState::Unreadable ? 1 : 0;
        const bool isRead = decoded.result == DecodeResult::Decoded;
        progress.unreadable += isRead ? 0 : 1;
        picture.state = isRead ? PictureState::Read : PictureState::Unreadable;
        picture.width = decoded.width;
        picture.height = decoded.height;
        picture.taken = std::move(decoded.taken);
        if (task.isWanted) {
            thumbnails.push_back({task.index, std::move(decoded.thumbnail)});
        }
    }
    onChange();
}
