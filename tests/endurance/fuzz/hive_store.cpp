// Hives in the real registry, and back.
#include "tests/endurance/fuzz/hive.h"

#include <algorithm>
#include <stdexcept>

namespace kestraboot::fuzz
{
namespace
{

void Require(LONG status, const char* what)
{
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(what) + " failed: " + std::to_string(status));
    }
}

void Store(HKEY parent, const HiveKey& key)
{
    for (const HiveValue& value : key.values) {
        // A byte other than zero follows the bytes, because a zero would be stored as the terminator.
        const std::string guarded = "xx" + value.bytes + "xxxx";
        Require(::RegSetValueExW(parent, value.name.c_str(), 0, value.type,
                                 reinterpret_cast<const BYTE*>(guarded.data()) + 2,
                                 static_cast<DWORD>(value.bytes.size())),
                "RegSetValueExW");
    }
    for (const HiveKey& subkey : key.subkeys) {
        HKEY made = nullptr;
        Require(::RegCreateKeyExW(parent, subkey.name.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &made,
                                  nullptr),
                "RegCreateKeyExW");
        Store(made, subkey);
        ::RegCloseKey(made);
    }
}

std::wstring Line(const std::wstring& path, const std::wstring& name, DWORD type, std::string bytes)
{
    const std::string terminator(sizeof(wchar_t), '\0');
    if (type == REG_SZ && bytes.size() % 2 == 0 && bytes.ends_with(terminator)) {
        bytes.resize(bytes.size() - terminator.size()); // stored or not, it is the same text
    }
    std::wstring line = path + L" : " + name + L" = " + std::to_wstring(type) + L' ';
    for (const char byte : bytes) {
        line += static_cast<wchar_t>(0x100 + static_cast<unsigned char>(byte));
    }
    return line;
}

void Collect(const HiveKey& key, const std::wstring& path, std::vector<std::wstring>& lines)
{
    lines.push_back(path);
    for (const HiveValue& value : key.values) {
        lines.push_back(Line(path, value.name, value.type, value.bytes));
    }
    for (const HiveKey& subkey : key.subkeys) {
        Collect(subkey, path + L'\\' + subkey.name, lines);
    }
}

void CollectStored(HKEY key, const std::wstring& path, std::vector<std::wstring>& lines)
{
    lines.push_back(path);
    std::wstring name(300, L'\0');
    for (DWORD i = 0;; ++i) {
        DWORD length = 300;
        DWORD type = 0;
        DWORD size = 0;
        if (::RegEnumValueW(key, i, name.data(), &length, nullptr, &type, nullptr, &size) != 0) {
            break;
        }
        std::string bytes(size, '\0');
        Require(::RegQueryValueExW(key, name.c_str(), nullptr, &type,
                                   reinterpret_cast<BYTE*>(bytes.data()), &size),
                "RegQueryValueExW");
        lines.push_back(Line(path, name.c_str(), type, bytes));
    }
    for (DWORD i = 0;; ++i) {
        DWORD length = 300;
        if (::RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != 0) {
            break;
        }
        HKEY subkey = nullptr;
        Require(::RegOpenKeyExW(key, name.c_str(), 0, KEY_READ, &subkey), "RegOpenKeyExW");
        CollectStored(subkey, path + L'\\' + name.c_str(), lines);
        ::RegCloseKey(subkey);
    }
}

std::vector<std::wstring> Sorted(std::vector<std::wstring> lines)
{
    std::ranges::sort(lines);
    return lines;
}

} // namespace

void Hive::StoreBelow(HKEY root) const
{
    Store(root, top);
}

std::vector<std::wstring> Hive::Lines() const
{
    std::vector<std::wstring> lines;
    Collect(top, {}, lines);
    return Sorted(lines);
}

std::vector<std::wstring> StoredLines(HKEY root)
{
    HKEY opened = nullptr; // a predefined handle remembers nothing about an enumeration
    Require(::RegOpenKeyExW(root, nullptr, 0, KEY_READ, &opened), "RegOpenKeyExW");
    std::vector<std::wstring> lines;
    CollectStored(opened, {}, lines);
    ::RegCloseKey(opened);
    return Sorted(lines);
}

void Empty(HKEY root)
{
    wchar_t name[300] = {};
    DWORD length = 300;
    while (::RegEnumKeyExW(root, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == 0) {
        Require(::RegDeleteTreeW(root, name), "RegDeleteTreeW");
        length = 300;
    }
    while (::RegEnumValueW(root, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == 0) {
        Require(::RegDeleteValueW(root, name), "RegDeleteValueW");
        length = 300;
    }
}

} // namespace kestraboot::fuzz
