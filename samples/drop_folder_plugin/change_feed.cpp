#include "change_feed.h"

#include "pictures.h"

#include <cstddef>

namespace
{

constexpr DWORD kBufferBytes = 64 * 1024; // the most that a server on the network takes

HANDLE OpenFolder(const std::wstring& path)
{
    // All sharing, so that the folder can be renamed and removed. The flags: a folder; waited for by an
    // event.
    return ::CreateFileW(path.c_str(), FILE_LIST_DIRECTORY,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                         FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
}

} // namespace

ChangeFeed::~ChangeFeed()
{
    if (asked) { // Windows writes into `buffer` until the request is complete
        ::CancelIo(directory.Get());
        DWORD bytes = 0;
        ::GetOverlappedResult(directory.Get(), &overlapped, &bytes, TRUE);
    }
}

bool ChangeFeed::Open(const std::wstring& path)
{
    folder = path;
    directory = Handle(OpenFolder(path));
    if (!directory) {
        return false;
    }
    changed = Handle(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    buffer.resize(kBufferBytes / sizeof buffer[0]);
    return changed && Ask();
}

bool ChangeFeed::Ask()
{
    overlapped = {};
    overlapped.hEvent = changed.Get();
    asked = ::ReadDirectoryChangesW(directory.Get(), buffer.data(), kBufferBytes, TRUE,
                                    FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                                        FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE,
                                    nullptr, &overlapped, nullptr) != 0;
    return asked;
}

ChangeFeed::News ChangeFeed::Await(HANDLE ending, DWORD milliseconds)
{
    const HANDLE awaited[] = {ending, changed.Get()};
    const DWORD which = ::WaitForMultipleObjects(2, awaited, FALSE, milliseconds);
    if (which != WAIT_OBJECT_0 + 1) {
        return which == WAIT_OBJECT_0 ? News::Ended : which == WAIT_TIMEOUT ? News::None : News::Lost;
    }
    DWORD bytes = 0;
    const bool told = ::GetOverlappedResult(directory.Get(), &overlapped, &bytes, FALSE) != 0;
    asked = false;
    if (!told && ::GetLastError() != ERROR_NOTIFY_ENUM_DIR) {
        return News::Lost;
    }
    const News news = !told || bytes == 0 ? News::Overflow : Read(bytes);
    return Ask() ? news : News::Lost;
}

ChangeFeed::News ChangeFeed::Read(DWORD bytes) const
{
    const std::byte* const begin = reinterpret_cast<const std::byte*>(buffer.data());
    const std::size_t header = offsetof(FILE_NOTIFY_INFORMATION, FileName);
    for (std::size_t at = 0; at + header <= bytes;) {
        const auto* const record = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(begin + at);
        if (at + header + record->FileNameLength > bytes) {
            return News::Overflow; // not to be believed: it is treated like one that does not fit
        }
        const std::wstring name(static_cast<const wchar_t*>(record->FileName),
                                record->FileNameLength / sizeof(wchar_t));
        if (MayBringPictures(record->Action, name)) {
            return News::Pictures;
        }
        if (record->NextEntryOffset == 0) {
            break;
        }
        at += record->NextEntryOffset;
    }
    return News::Unrelated;
}

bool ChangeFeed::MayBringPictures(DWORD action, const std::wstring& name) const
{
    if (action == FILE_ACTION_MODIFIED) {
        return IsPicture(name);
    }
    if (action == FILE_ACTION_ADDED) { // a folder may come with all that is in it
        const DWORD attributes = ::GetFileAttributesW((folder + L'\\' + name).c_str());
        return IsPicture(name) ||
               (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
    }
    return true; // removed or renamed: it may have been a folder
}

bool ChangeFeed::StillThere() const
{
    const Handle now(OpenFolder(folder));
    BY_HANDLE_FILE_INFORMATION opened = {};
    BY_HANDLE_FILE_INFORMATION found = {};
    return now && ::GetFileInformationByHandle(directory.Get(), &opened) &&
           ::GetFileInformationByHandle(now.Get(), &found) &&
           opened.dwVolumeSerialNumber == found.dwVolumeSerialNumber &&
           opened.nFileIndexHigh == found.nFileIndexHigh && opened.nFileIndexLow == found.nFileIndexLow;
}
