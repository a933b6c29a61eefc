#pragma once

#include "handle.h"

#include <string>
#include <vector>

/// What Windows tells of the changes in a folder and in those below it. For one thread.
class ChangeFeed
{
public:
    enum class News {
        Ended,     ///< the event was set
        None,      ///< the time has passed
        Unrelated, ///< a change that brings no picture
        Pictures,  ///< there may be new pictures, or fewer
        Overflow,  ///< too many changes at once: which ones is not known
        Lost,      ///< the folder went, or its server
    };

    ChangeFeed() = default;
    ChangeFeed(const ChangeFeed&) = delete;
    ChangeFeed& operator=(const ChangeFeed&) = delete;
    ~ChangeFeed();

    /// Begins. From here on no change is missed. After false GetLastError() says why.
    [[nodiscard]] bool Open(const std::wstring& path);

    /// Waits for news, or for that event.
    [[nodiscard]] News Await(HANDLE ending, DWORD milliseconds);

    /// Whether the path still names the folder that was opened: Windows does not tell of a folder that
    /// was renamed, nor in any case of a server that went.
    [[nodiscard]] bool StillThere() const;

private:
    bool Ask();
    [[nodiscard]] News Read(DWORD bytes) const;
    [[nodiscard]] bool MayBringPictures(DWORD action, const std::wstring& name) const;

    std::wstring folder;
    Handle directory;
    Handle changed;
    OVERLAPPED overlapped = {};
    std::vector<DWORD> buffer; // of numbers, since the records in it begin at multiples of four
    bool asked = false;
};
