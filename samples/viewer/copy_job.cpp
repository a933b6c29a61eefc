#include "copy_job.h"

#include "copy_file.h"

CopyJob::CopyJob(std::filesystem::path drive, std::vector<PictureFile> files,
                 std::filesystem::path folder, std::function<void()> changed)
    : source(std::move(drive)), toCopy(std::move(files)), target(std::move(folder)),
      onChange(std::move(changed))
{
    progress.all = toCopy.size();
    for (const PictureFile& file : toCopy) {
        progress.allBytes += file.size;
    }
    thread = std::jthread([this](const std::stop_token& stop) noexcept {
        Run(stop);
    });
}

CopyProgress CopyJob::Progress() const
{
    const std::scoped_lock lock(mutex);
    return progress;
}

void CopyJob::Run(const std::stop_token& stop)
{
    for (const PictureFile& file : toCopy) {
        if (stop.stop_requested()) {
            End(CopyEnd::Cancelled, ERROR_REQUEST_ABORTED);
            return;
        }
        if (!CopyOne(file, stop)) {
            return;
        }
    }
    End(CopyEnd::All, ERROR_SUCCESS);
}

bool CopyJob::CopyOne(const PictureFile& file, const std::stop_token& stop)
{
    std::uint64_t counted = 0;
    {
        const std::scoped_lock lock(mutex);
        ++progress.begun;
        progress.name = file.path.filename().wstring();
    }
    onChange();
    const CopyResult result = CopyWhole(file.path, target, [&](std::uint64_t bytes) {
        const std::scoped_lock lock(mutex);
        counted += bytes;
        progress.bytes += bytes;
        onChange();
        return !stop.stop_requested();
    });
    if (result.error == ERROR_REQUEST_ABORTED) {
        End(CopyEnd::Cancelled, result.error);
        return false;
    }
    if (result.error != ERROR_SUCCESS &&
        ::GetFileAttributesW(source.c_str()) == INVALID_FILE_ATTRIBUTES) {
        End(CopyEnd::DriveGone, result.error);
        return false;
    }
    if (result.error == ERROR_DISK_FULL || result.error == ERROR_HANDLE_DISK_FULL ||
        ::GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES) {
        End(CopyEnd::NoRoom, result.error);
        return false;
    }
    const std::scoped_lock lock(mutex);
    progress.bytes += file.size > counted ? file.size - counted : 0; // so that the bar reaches its end
    Count(file, result.alreadyThere, result.error);
    return true;
}

/// With the lock held.
void CopyJob::Count(const PictureFile& file, bool isThere, unsigned long error)
{
    progress.copied += error == ERROR_SUCCESS && !isThere ? 1 : 0;
    progress.alreadyThere += isThere ? 1 : 0;
    if (error != ERROR_SUCCESS && progress.failed++ == 0) {
        progress.firstFailed = file.path.filename().wstring();
        progress.error = error;
    }
}

void CopyJob::End(CopyEnd how, unsigned long error)
{
    const std::scoped_lock lock(mutex);
    progress.end = how;
    progress.error = how == CopyEnd::All ? progress.error : error;
    onChange();
}
