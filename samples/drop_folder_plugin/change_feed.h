#pragma once

#include "handle.h"

#include <string>
#include <vector>

/// Windows' reports of changes in a folder and in those below it. For one thread.
class ChangeFeed
{
public:
    enum class News {
        Ended,     ///< the event was set
        None,      ///< the time has passed
        Unrelated, ///< a change that brings no picture
        Pictures,  ///< there may be new pictures, or fewer
        Overflow,  ///< too many changes at once: which ones is not known
        Lost,      ///< the folder or its server was removed
    };

    ChangeFeed() = default;
    ChangeFeed(const ChangeFeed&) = delete;
    ChangeFeed& operator=(const ChangeFeed&) = delete;
    ~ChangeFeed();

    /// Begins. From here on no change is missed. After false GetLastError() gives the reason.
    [[nodiscard]] bool Open(const std::wstring& path);

    /// Waits for news, or for that event.
    [[nodiscard]] News Await(HANDLE ending, DWORD milliseconds);

    /// Whether the path still names the folder that was opened: Windows does not report that a folder
    /// was renamed, and does not always report that a server was removed.
    [[nodiscard]] bool StillThere() const;

private:
    bool Ask();
    [[nodiscard]] News Read(DWORD bytes) const;
    [[nodiscard]] bool MayBringPictures(DWORD action, const std::wstring& name) const;

    std::wstring folder;
    Handle directory;
    Handle changed;
    OVERLAPPED overlapped = {};
    std::vector<DWORD> buffer; // of numbers, because the records in it begin at multiples of four
    bool asked = false;
};
