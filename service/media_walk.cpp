#include "service/media_walk.h"

#include "foundation/error_mode.h"
#include "foundation/handles.h"
#include "foundation/trace.h"

#include <cwchar>
#include <deque>
#include <string_view>
#include <utility>

namespace kestraboot
{
namespace
{

struct SearchEntry {
    std::wstring folder;
    unsigned level;
};

enum class Listing { Found, NothingFound, CannotList };

void TraceEntry(unsigned level, const wchar_t* kind, const wchar_t* name) noexcept
{
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><%d><%ls><%ls>\n", static_cast<int>(level), kind, name);
    ::OutputDebugStringW(line);
}

bool IsDotEntry(const wchar_t* name) noexcept
{
    return std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0;
}

bool IsSupported(const wchar_t* fileName, const ExtensionSet& extensions) noexcept
{
    const wchar_t* const extension = FileExtension(fileName);
    return extension != nullptr && extensions.Contains(extension);
}

/// Allocates once. The number of allocations of operator+ differs from library to library.
std::wstring PathIn(std::wstring_view folder, std::wstring_view name)
{
    std::wstring path;
    path.reserve(folder.size() + 1 + name.size());
    path.append(folder).append(1, L'\\').append(name);
    return path;
}

Listing ListFolder(const SearchEntry& current, const ExtensionSet& extensions,
                   std::deque<SearchEntry>& pending)
{
    WIN32_FIND_DATAW entry = {};
    const UniqueFindHandle listing(::FindFirstFileW(PathIn(current.folder, L"*").c_str(), &entry));
    if (!listing) {
        static_cast<void>(::FindClose(listing.get())); // fails; the owner closes no invalid handle
        return Listing::CannotList;
    }
    do {
        if (IsDotEntry(entry.cFileName)) {
            continue;
        }
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            // Queued and traced even if it is too deep to be listed.
            std::wstring folder = PathIn(current.folder, entry.cFileName);
            TraceEntry(current.level, L"FOLDER", folder.c_str());
            pending.push_back({std::move(folder), current.level + 1});
            continue;
        }
        TraceEntry(current.level, L"FILE", entry.cFileName);
        if (IsSupported(entry.cFileName, extensions)) {
            return Listing::Found;
        }
    } while (::FindNextFileW(listing.get(), &entry));
    return Listing::NothingFound;
}

} // namespace

bool FindSupportedFile(const wchar_t* rootPath, unsigned depth, const ExtensionSet& extensions)
{
    const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
    std::deque<SearchEntry> pending;
    SearchEntry current{rootPath, 1};
    while (current.level <= depth) {
        switch (ListFolder(current, extensions, pending)) {
        case Listing::Found:
            ::OutputDebugStringW(L"<***DeviceConnect***><Supported file format is found on device.>");
            return true;
        case Listing::CannotList:
            return false;
        case Listing::NothingFound:
            break;
        }
        if (pending.empty()) {
            break;
        }
        current = std::move(pending.front());
        pending.pop_front();
    }
    return false;
}

} // namespace kestraboot
