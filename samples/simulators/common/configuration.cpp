#include "configuration.h"

#include <algorithm>

namespace kestraboot::simulators
{
namespace
{

/// The program or the library that this code is part of.
std::wstring OwnFolder()
{
    static const int inside = 0;
    HMODULE self = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<const wchar_t*>(&inside), &self);
    wchar_t path[1024] = {};
    ::GetModuleFileNameW(self, path, 1023);
    const std::wstring whole = path;
    return whole.substr(0, whole.find_last_of(L'\\'));
}

std::wstring PathOf(const wchar_t* file)
{
    wchar_t folder[1024] = {};
    const DWORD length = ::GetEnvironmentVariableW(L"KESTRABOOT_SIMULATORS", folder, 1024);
    const bool named = length > 0 && length < 1024;
    return (named ? std::wstring(folder) : OwnFolder()) + L'\\' + file;
}

std::string ReadAll(const std::wstring& path)
{
    std::string contents;
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return contents;
    }
    char piece[4096];
    DWORD got = 0;
    while (::ReadFile(file, piece, sizeof piece, &got, nullptr) && got != 0) {
        contents.append(piece, got);
    }
    ::CloseHandle(file);
    return contents;
}

} // namespace

std::vector<Entry> ReadEntries(const wchar_t* file)
{
    std::vector<Entry> entries;
    const std::string contents = ReadAll(PathOf(file));
    for (std::size_t begin = 0; begin < contents.size();) {
        const std::size_t end = std::min(contents.find('\n', begin), contents.size());
        std::string line = contents.substr(begin, end - begin);
        begin = end + 1;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) {
            line.pop_back();
        }
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::size_t blank = std::min(line.find(' '), line.size());
        const std::size_t rest = std::min(line.find_first_not_of(' ', blank), line.size());
        entries.push_back({line.substr(0, blank), FromUtf8(line.substr(rest))});
    }
    return entries;
}

bool Says(const std::vector<Entry>& entries, const char* word)
{
    return std::ranges::any_of(entries, [&](const Entry& entry) {
        return entry.word == word;
    });
}

void AddToLog(const wchar_t* file, const std::string& line)
{
    const HANDLE log =
        ::CreateFileW(PathOf(file).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (log != INVALID_HANDLE_VALUE) {
        const std::string whole = line + "\n";
        DWORD written = 0;
        ::WriteFile(log, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
        ::CloseHandle(log);
    }
}

std::wstring FromUtf8(const std::string& text)
{
    std::wstring wide(text.size(), L'\0');
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                             wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

std::string ToUtf8(const std::wstring& text)
{
    std::string narrow(text.size() * 3, '\0');
    const int length =
        ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                              static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(length));
    return narrow;
}

} // namespace kestraboot::simulators
