#include "tests/system/registry_dump.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace kestraboot::tests
{
namespace
{

using std::string_view_literals::operator""sv;

/// Keys of Windows' own, nine of every ten keys, which no program of ours has a reason to open for
/// writing. Reading them took nearly all the time of the tests that compare dumps.
constexpr std::array kWindowsOwn = {L"Classes"sv,   L"Cryptography"sv,      L"Explorer"sv,
                                    L"Fonts"sv,     L"Internet Explorer"sv, L"Telephony"sv,
                                    L"Time Zones"sv};

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text) {
        narrow += character < 0x80 ? static_cast<char>(character) : '?';
    }
    return narrow;
}

void DumpValues(HKEY key, std::vector<std::string>& lines)
{
    static std::wstring name(16'384, L'\0'); // of any value; allocated once
    static std::vector<BYTE> data(1 << 20);
    for (DWORD index = 0;; ++index) {
        auto length = static_cast<DWORD>(name.size());
        auto size = static_cast<DWORD>(data.size());
        DWORD type = 0;
        if (::RegEnumValueW(key, index, name.data(), &length, nullptr, &type, data.data(), &size) !=
            ERROR_SUCCESS) {
            return;
        }
        std::string line = "  " + Narrow(name.substr(0, length)) + " " + std::to_string(type) + " ";
        for (DWORD i = 0; i < size; ++i) {
            line += "0123456789abcdef"[data[i] >> 4];
            line += "0123456789abcdef"[data[i] & 0xF];
        }
        lines.push_back(line);
    }
}

void Dump(HKEY parent, const std::wstring& path, bool withTimes, std::vector<std::string>& lines)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        lines.push_back(Narrow(path) + " cannot be opened");
        return;
    }
    FILETIME written = {};
    ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr, &written);
    lines.push_back(Narrow(path) + (withTimes ? " " + std::to_string(written.dwHighDateTime) + "." +
                                                    std::to_string(written.dwLowDateTime)
                                              : ""));
    DumpValues(key, lines);
    wchar_t name[256] = {};
    for (DWORD index = 0;; ++index) {
        DWORD length = 256;
        if (::RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        const std::wstring child = name;
        if (std::ranges::find(kWindowsOwn, child) != kWindowsOwn.end()) {
            continue;
        }
        const bool ours = child == L"Corvane" || child == L"Run";
        Dump(key, child, withTimes || ours, lines);
    }
    ::RegCloseKey(key);
}

} // namespace

std::vector<std::string> RegistryDump()
{
    std::vector<std::string> lines;
    for (const auto& [root, path] :
         {std::pair(HKEY_LOCAL_MACHINE, L"SOFTWARE"), {HKEY_CURRENT_USER, L""}}) {
        const std::size_t before = lines.size();
        Dump(root, path, false, lines);
        if (lines.size() < before + 2) { // Windows itself has keys below both
            throw std::runtime_error("the registry cannot be read");
        }
    }
    return lines;
}

} // namespace kestraboot::tests
