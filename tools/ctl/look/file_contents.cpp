#include "tools/ctl/look/file_contents.h"

#include "tools/common/handle.h"

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kCannotBeRead = L"cannot be read";
constexpr const wchar_t* kTooLarge = L"is larger than 64 MB, and was not checked";
constexpr DWORD kAtOnce = 1 << 20;

} // namespace

FileContents ReadContents(const std::wstring& path)
{
    const HANDLE opened =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        return {std::nullopt, kCannotBeRead};
    }
    const Handle file(opened);
    std::vector<std::uint8_t> bytes;
    for (;;) { // up to the present end: the file may grow
        const std::size_t before = bytes.size();
        bytes.resize(before + kAtOnce);
        DWORD read = 0;
        if (!::ReadFile(file.Get(), bytes.data() + before, kAtOnce, &read, nullptr)) {
            return {std::nullopt, kCannotBeRead};
        }
        bytes.resize(before + read);
        if (read == 0) {
            return {std::move(bytes), L""};
        }
        if (bytes.size() > kLargestFile) {
            return {std::nullopt, kTooLarge};
        }
    }
}

PeReading ReadPeFile(const std::wstring& path)
{
    const FileContents contents = ReadContents(path);
    if (!contents.bytes) {
        return {std::nullopt, contents.fault};
    }
    return ReadPe(*contents.bytes);
}

} // namespace kestraboot::tools
