#pragma once

#include "picture_files.h"

#include <cstdint>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

enum class CopyEnd { NotYet, All, Cancelled, DriveGone, NoRoom };

struct CopyProgress {
    CopyEnd end = CopyEnd::NotYet;
    std::size_t all = 0;
    std::size_t begun = 0;
    std::size_t copied = 0;
    std::size_t alreadyThere = 0;
    std::size_t failed = 0;
    std::uint64_t bytes = 0;
    std::uint64_t allBytes = 0;
    std::wstring name; ///< of the file that is being copied
    std::wstring firstFailed;
    unsigned long error = 0; ///< of the first that failed, or the one that ended the copying
};

/// Copies files into a folder, on a thread of its own. Skips a file that fails. A removed drive, or a
/// folder without room, ends the copying. Calls `changed` on that thread after each change.
class CopyJob
{
public:
    CopyJob(std::filesystem::path drive, std::vector<PictureFile> files, std::filesystem::path folder,
            std::function<void()> changed);

    void Cancel() { thread.request_stop(); }
    [[nodiscard]] CopyProgress Progress() const;

private:
    void Run(const std::stop_token& stop);
    /// False at the end.
    bool CopyOne(const PictureFile& file, const std::stop_token& stop);
    void Count(const PictureFile& file, bool isThere, unsigned long error);
    void End(CopyEnd how, unsigned long error);

    const std::filesystem::path source;
    const std::vector<PictureFile> toCopy;
    const std::filesystem::path target;
    const std::function<void()> onChange;

    mutable std::mutex mutex;
    CopyProgress progress;

    std::jthread thread; // last: it ends, cancelled, before the rest does
};
