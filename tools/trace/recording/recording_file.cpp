#include "tools/trace/recording/recording_file.h"

#include "tools/trace/lines/system_time.h"

#include <windows.h>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kPieceBytes = 65'536;

} // namespace

RecordingFile::RecordingFile(const std::wstring& path) : piece(kPieceBytes)
{
    const HANDLE opened =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened != INVALID_HANDLE_VALUE) {
        file = Handle(opened);
    }
}

std::optional<std::string_view> RecordingFile::Read()
{
    DWORD size = 0;
    if (!::ReadFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &size, nullptr)) {
        return std::nullopt;
    }
    position += size;
    return std::string_view(piece.data(), size);
}

std::uint64_t RecordingFile::Size() const noexcept
{
    LARGE_INTEGER size = {};
    return ::GetFileSizeEx(file.Get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::optional<std::int64_t> RecordingFile::LastDay() const noexcept
{
    FILETIME written = {};
    return ::GetFileTime(file.Get(), nullptr, nullptr, &written) ? std::optional(LocalDay(written))
                                                                 : std::nullopt;
}

} // namespace kestraboot::tools
