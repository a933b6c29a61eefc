#include "service/media_walk.h"

#include "foundation/error_mode.h"
#include "foundation/handles.h"
#include "foundation/text.h"
#include "foundation/trace.h"

#include <deque>
#include <iterator>
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

int FormatEntry(TraceBuffer& line, unsigned level, const wchar_t* kind, const wchar_t* name) noexcept
{
    return FormatTraceLine(line, L"<***DeviceConnect***><%d><%ls><%ls>\n", static_cast<int>(level), kind,
                           name);
}

void TraceFolder(unsigned level, const wchar_t* path) noexcept
{
    TraceBuffer line = {};
    static_cast<void>(FormatEntry(line, level, L"FOLDER", path)); // written even if cut or empty
    ::OutputDebugStringW(line);
}

/// The trace lines of the files of one folder. They differ in the name alone, so only the first is
/// formatted, without its name, and each line gets its own name: formatting every line takes longer
/// than everything else that is done for a file.
class FileLine
{
public:
    explicit FileLine(unsigned folderLevel) noexcept : level(folderLevel) {}

    void Trace(std::wstring_view name) noexcept
    {
        if (nameBegins == nullptr) {
            const int written = FormatEntry(line, level, L"FILE", L"");
            if (written < 0) {
                ::OutputDebugStringW(line); // it is empty
                return;
            }
            nameBegins = line + written - kBehindName.size();
        }
        wchar_t* const end = Append(Append(nameBegins, name), kBehindName);
        *end = L'\0';
        ::OutputDebugStringW(line);
    }

private:
    static constexpr std::wstring_view kBehindName = L">\n";

    /// Writes as much as fits. Returns the end.
    wchar_t* Append(wchar_t* at, std::wstring_view text) noexcept
    {
        return at + text.copy(at, static_cast<std::size_t>(std::end(line) - 1 - at));
    }

    unsigned level;
    TraceBuffer line = {};
    wchar_t* nameBegins = nullptr; ///< in the line, once it is formatted
};

bool IsDotEntry(std::wstring_view name) noexcept
{
    return name == L"." || name == L"..";
}

bool IsSupported(std::wstring_view fileName, const ExtensionSet& extensions) noexcept
{
    const wchar_t* const extension = FileExtension(fileName);
    return extension != nullptr && extensions.Contains(extension);
}

Listing ListFolder(const SearchEntry& current, const ExtensionSet& extensions,
                   std::deque<SearchEntry>& pending)
{
    WIN32_FIND_DATAW entry = {};
    const UniqueFindHandle listing(::FindFirstFileW(JoinPath(current.folder, L"*").c_str(), &entry));
    if (!listing) {
        static_cast<void>(::FindClose(listing.get())); // fails; the owner closes no invalid handle
        return Listing::CannotList;
    }
    FileLine fileLine(current.level);
    do {
        const std::wstring_view name = entry.cFileName;
        if (IsDotEntry(name)) {
            continue;
        }
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            // Queued and traced even if it is too deep to be listed.
            std::wstring folder = JoinPath(current.folder, name);
            TraceFolder(current.level, folder.c_str());
            pending.push_back({std::move(folder), current.level + 1});
            continue;
        }
        fileLine.Trace(name);
        if (IsSupported(name, extensions)) {
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
