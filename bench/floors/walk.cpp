#include "bench/floors/walk.h"

#include <windows.h>
#include <cwchar>
#include <deque>
#include <string_view>

namespace kestraboot::bench
{
namespace
{

struct Folder {
    std::wstring path;
    unsigned level;
};

/// Calls `onEntry(level, name of the kind, text, file name)` for each entry until it returns true.
template <typename OnEntry>
bool Walk(const std::wstring& root, unsigned depth, OnEntry onEntry)
{
    std::deque<Folder> pending;
    bool stopped = false;
    const UINT mode = ::SetErrorMode(SEM_FAILCRITICALERRORS);
    for (Folder current{root, 1}; current.level <= depth && !stopped;) {
        WIN32_FIND_DATAW entry;
        const HANDLE listing = ::FindFirstFileW((current.path + L"\\*").c_str(), &entry);
        if (listing == INVALID_HANDLE_VALUE) {
            break;
        }
        do {
            const std::wstring_view name = entry.cFileName;
            if (name == L"." || name == L"..") {
                continue;
            }
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                pending.push_back({current.path + L'\\' + entry.cFileName, current.level + 1});
                stopped = onEntry(current.level, L"FOLDER", pending.back().path, L"");
            } else {
                stopped = onEntry(current.level, L"FILE", name, entry.cFileName);
            }
        } while (!stopped && ::FindNextFileW(listing, &entry));
        ::FindClose(listing);
        if (pending.empty()) {
            break;
        }
        current = std::move(pending.front());
        pending.pop_front();
    }
    ::SetErrorMode(mode);
    return stopped;
}

void Trace(unsigned level, std::wstring_view kind, std::wstring_view text)
{
    wchar_t line[260];
    wchar_t* end = line;
    const auto append = [&](std::wstring_view piece) {
        const auto room = static_cast<std::size_t>(line + 259 - end);
        end += piece.copy(end, room);
    };
    append(L"<***DeviceConnect***><");
    const wchar_t digit = static_cast<wchar_t>(L'0' + level);
    append({&digit, 1});
    append(L"><");
    append(kind);
    append(L"><");
    append(text);
    append(L">\n");
    *end = L'\0';
    ::OutputDebugStringW(line);
}

} // namespace

std::size_t BareWalk(const std::wstring& root, unsigned depth)
{
    std::size_t entries = 0;
    Walk(root, depth, [&](unsigned, const wchar_t*, std::wstring_view, const wchar_t*) {
        ++entries;
        return false;
    });
    return entries;
}

std::size_t TracedWalk(const std::wstring& root, unsigned depth)
{
    std::size_t entries = 0;
    Walk(root, depth, [&](unsigned level, const wchar_t* kind, std::wstring_view text, const wchar_t*) {
        ++entries;
        Trace(level, kind, text);
        return false;
    });
    return entries;
}

bool TracedSearch(const std::wstring& root, unsigned depth, const wchar_t* extension)
{
    const bool found =
        Walk(root, depth,
             [&](unsigned level, const wchar_t* kind, std::wstring_view text, const wchar_t* name) {
                 Trace(level, kind, text);
                 const wchar_t* const dot = std::wcsrchr(name, L'.');
                 return dot != nullptr && _wcsicmp(dot + 1, extension) == 0;
             });
    if (found) {
        ::OutputDebugStringW(L"<***DeviceConnect***><Supported file format is found on device.>");
    }
    return found;
}

} // namespace kestraboot::bench
