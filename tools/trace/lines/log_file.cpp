#include "tools/trace/lines/log_file.h"

#include "tools/common/standard_output.h"
#include "tools/common/utf8.h"
#include "tools/common/windows_error.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace kestraboot::tools
{
namespace
{

Handle Opened(const std::wstring& path, DWORD access, DWORD disposition)
{
    const HANDLE opened = ::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                        nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    return opened != INVALID_HANDLE_VALUE ? Handle(opened) : Handle();
}

bool IsSameFile(HANDLE one, HANDLE other) noexcept
{
    BY_HANDLE_FILE_INFORMATION first = {};
    BY_HANDLE_FILE_INFORMATION second = {};
    return ::GetFileInformationByHandle(one, &first) && ::GetFileInformationByHandle(other, &second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh && first.nFileIndexLow == second.nFileIndexLow;
}

std::wstring Earlier(const std::wstring& path, unsigned number)
{
    return number == 0 ? path : path + L'.' + std::to_wstring(number);
}

} // namespace

bool LogFile::Open(const std::wstring& path, Rotation rotation)
{
    name = path;
    limits = rotation;
    longestNow = rotation.longest;
    return OpenAtEnd();
}

bool LogFile::OpenAtEnd()
{
    Handle opened = Opened(name, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, OPEN_ALWAYS);
    LARGE_INTEGER size = {};
    if (!opened || !::GetFileSizeEx(opened.Get(), &size)) {
        return false;
    }
    file = std::move(opened);
    length = static_cast<std::uint64_t>(size.QuadPart);
    return true;
}

void LogFile::Write(std::string_view lines)
{
    if (!file || lines.empty()) {
        return;
    }
    FollowName();
    while (!lines.empty()) {
        std::size_t part = FittingPart(lines);
        if (part == 0) {
            if (length != 0) {
                Rotate();
            }
            part = std::max(FittingPart(lines), lines.find('\n') + 1); // one line fits everywhere
        }
        Append(lines.substr(0, part));
        lines.remove_prefix(part);
    }
}

void LogFile::Append(std::string_view bytes)
{
    const bool written = WriteBytes(file.Get(), bytes);
    if (!written && !failing) {
        std::fprintf(stderr, "kestratrace: cannot write to the file: %s; going on\n",
                     WindowsErrorText(::GetLastError()).c_str());
    }
    length += bytes.size();
    failing = !written;
    failedEver = failedEver || !written;
}

/// The number of bytes of whole lines that fit.
std::size_t LogFile::FittingPart(std::string_view lines) const
{
    if (limits.longest == 0 || length + lines.size() <= longestNow) {
        return lines.size();
    }
    const std::uint64_t room = longestNow > length ? longestNow - length : 0;
    return lines.substr(0, static_cast<std::size_t>(room)).rfind('\n') + 1; // npos + 1 is 0
}

/// A file that was renamed contains everything that was written before.
void LogFile::FollowName()
{
    const Handle named = Opened(name, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
    const bool gone = !named && ::GetLastError() == ERROR_FILE_NOT_FOUND;
    if (gone || (named && !IsSameFile(named.Get(), file.Get()))) {
        BeginAnew();
    }
}

/// Continues in the old file if there can be no new one.
void LogFile::BeginAnew()
{
    if (!OpenAtEnd()) {
        if (!std::exchange(inOldFile, true)) {
            std::fprintf(stderr, "kestratrace: cannot open %s: %s; going on in the file before it\n",
                         ToUtf8(name).c_str(), WindowsErrorText(::GetLastError()).c_str());
        }
        return;
    }
    inOldFile = false;
    longestNow = limits.longest;
    if (length == 0) {
        Append(heading);
    }
}

void LogFile::Rotate()
{
    longestNow = length + limits.longest; // if it stays in this file
    bool moved = true;
    for (unsigned number = limits.keep; number-- > 0 && moved;) {
        moved = ::MoveFileExW(Earlier(name, number).c_str(), Earlier(name, number + 1).c_str(),
                              MOVEFILE_REPLACE_EXISTING) ||
                (number != 0 && ::GetLastError() == ERROR_FILE_NOT_FOUND);
    }
    if (moved) {
        BeginAnew();
        return;
    }
    std::fprintf(stderr, "kestratrace: cannot rotate %s: %s; it grows on\n", ToUtf8(name).c_str(),
                 WindowsErrorText(::GetLastError()).c_str());
}

} // namespace kestraboot::tools
