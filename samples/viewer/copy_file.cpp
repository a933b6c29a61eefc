#include "copy_file.h"

#include <memory>
#include <vector>

namespace
{

struct CloseFile {
    void operator()(void* file) const noexcept { ::CloseHandle(file); }
};
using File = std::unique_ptr<void, CloseFile>;

/// Null if it cannot be opened; GetLastError then gives the reason.
File Open(const std::filesystem::path& path, DWORD access, DWORD share, DWORD how)
{
    File file(
        ::CreateFileW(path.c_str(), access, share, nullptr, how, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE) {
        static_cast<void>(file.release()); // nothing to close
    }
    return file;
}

std::uint64_t Joined(DWORD high, DWORD low)
{
    return std::uint64_t{high} << 32 | low;
}

bool IsAlreadyThere(const std::filesystem::path& path, const BY_HANDLE_FILE_INFORMATION& source)
{
    WIN32_FILE_ATTRIBUTE_DATA there = {};
    return ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &there) &&
           there.nFileSizeHigh == source.nFileSizeHigh && there.nFileSizeLow == source.nFileSizeLow &&
           ::CompareFileTime(&there.ftLastWriteTime, &source.ftLastWriteTime) == 0;
}

bool DeleteWhenClosed(HANDLE file, bool yes)
{
    FILE_DISPOSITION_INFO disposition = {};
    disposition.DeleteFile = yes;
    return ::SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) !=
           0;
}

bool Rename(HANDLE file, const std::filesystem::path& to)
{
    const std::wstring& name = to.native();
    const std::size_t bytes = name.size() * sizeof(wchar_t);
    std::vector<std::uint64_t> room((sizeof(FILE_RENAME_INFO) + bytes) / sizeof(std::uint64_t) + 1);
    auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(room.data());
    rename->FileNameLength = static_cast<DWORD>(bytes);
    name.copy(rename->FileName, name.size());
    return ::SetFileInformationByHandle(file, FileRenameInfo, rename,
                                        static_cast<DWORD>(room.size() * sizeof(std::uint64_t))) != 0;
}

/// "name.jpg", "name (2).jpg", ...
std::filesystem::path Numbered(const std::filesystem::path& path, unsigned number)
{
    std::wstring name = path.stem().wstring();
    if (number > 1) {
        name += L" (" + std::to_wstring(number) + L')';
    }
    return path.parent_path() / (name + path.extension().wstring());
}

DWORD GiveItsName(HANDLE file, const std::filesystem::path& target)
{
    if (!DeleteWhenClosed(file, false)) {
        return ::GetLastError();
    }
    for (unsigned number = 1; !Rename(file, Numbered(target, number)); ++number) {
        const DWORD error = ::GetLastError();
        if ((error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) || number == 100'000) {
            DeleteWhenClosed(file, true);
            return error;
        }
    }
    return ERROR_SUCCESS;
}

DWORD CopyContents(HANDLE from, HANDLE to, std::uint64_t size,
                   const std::function<bool(std::uint64_t)>& goOn)
{
    std::vector<char> buffer(1 << 20);
    for (std::uint64_t copied = 0;;) {
        DWORD read = 0;
        DWORD written = 0;
        if (!::ReadFile(from, buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr)) {
            return ::GetLastError();
        }
        if (read == 0) {
            return copied == size ? ERROR_SUCCESS : ERROR_READ_FAULT;
        }
        if (!::WriteFile(to, buffer.data(), read, &written, nullptr)) {
            return ::GetLastError();
        }
        copied += written;
        if (!goOn(written)) {
            return ERROR_REQUEST_ABORTED;
        }
    }
}

} // namespace

CopyResult CopyWhole(const std::filesystem::path& from, const std::filesystem::path& folder,
                     const std::function<bool(std::uint64_t)>& goOn)
{
    const File source = Open(from, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION facts = {};
    if (!source || !::GetFileInformationByHandle(source.get(), &facts)) {
        return {::GetLastError(), false};
    }
    const std::filesystem::path target = folder / from.filename();
    if (IsAlreadyThere(target, facts)) {
        return {ERROR_SUCCESS, true};
    }
    std::filesystem::path unfinished = target;
    unfinished += L'.' + std::to_wstring(::GetCurrentProcessId()) + L".part";
    const File copy = Open(unfinished, GENERIC_WRITE | DELETE, 0, CREATE_ALWAYS);
    if (!copy || !DeleteWhenClosed(copy.get(), true)) {
        return {::GetLastError(), false};
    }
    const std::uint64_t size = Joined(facts.nFileSizeHigh, facts.nFileSizeLow);
    DWORD error = CopyContents(source.get(), copy.get(), size, goOn);
    if (error == ERROR_SUCCESS &&
        !::SetFileTime(copy.get(), &facts.ftCreationTime, nullptr, &facts.ftLastWriteTime)) {
        error = ::GetLastError();
    }
    return {error == ERROR_SUCCESS ? GiveItsName(copy.get(), target) : error, false};
}
