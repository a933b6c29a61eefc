#include "tools/ctl/registry_key.h"

#include <cstring>

namespace kestraboot::tools
{

RegistryKey::RegistryKey(HKEY root, const std::wstring& path, REGSAM access) noexcept
{
    HKEY opened = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, access, &opened) == ERROR_SUCCESS) {
        key = opened;
    }
}

RegistryKey::~RegistryKey()
{
    if (key != nullptr) {
        ::RegCloseKey(key);
    }
}

std::vector<RegistryKey::Value> RegistryKey::Values() const
{
    std::vector<Value> values;
    std::wstring name(16'384, L'\0'); // longer than any
    for (DWORD index = 0;; ++index) {
        auto length = static_cast<DWORD>(name.size());
        if (::RegEnumValueW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return values;
        }
        if (std::optional<Value> value = Find(name.substr(0, length).c_str())) {
            values.push_back(std::move(*value));
        }
    }
}

std::optional<RegistryKey::Value> RegistryKey::Find(const wchar_t* name) const
{
    Value value;
    value.name = name != nullptr ? name : L"";
    DWORD size = 0;
    LONG status = ::RegQueryValueExW(key, name, nullptr, &value.type, nullptr, &size);
    while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) { // it may grow in between
        value.bytes.resize(size);
        status = ::RegQueryValueExW(key, name, nullptr, &value.type, value.bytes.data(), &size);
        if (status == ERROR_SUCCESS) {
            value.bytes.resize(size);
            return value;
        }
    }
    return std::nullopt;
}

std::vector<std::wstring> RegistryKey::Subkeys() const
{
    std::vector<std::wstring> names;
    wchar_t name[256] = {}; // no key's name is longer
    for (DWORD index = 0;; ++index) {
        DWORD length = 256;
        if (::RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

std::optional<std::wstring> RegistryKey::Text(const wchar_t* name) const
{
    const std::optional<Value> value = Find(name);
    if (!value) {
        return std::nullopt;
    }
    std::wstring text((value->bytes.size() + 1) / sizeof(wchar_t), L'\0');
    if (!value->bytes.empty()) {
        std::memcpy(text.data(), value->bytes.data(), value->bytes.size());
    }
    return text.substr(0, text.find(L'\0'));
}

std::optional<std::uint32_t> RegistryKey::Number(const wchar_t* name) const
{
    constexpr std::uint32_t kMissing = 0xFFFFFFFF;
    const std::optional<Value> value = Find(name);
    std::uint32_t number = kMissing;
    if (value && value->bytes.size() == sizeof number) {
        std::memcpy(&number, value->bytes.data(), sizeof number);
    }
    return number != kMissing ? std::optional(number) : std::nullopt;
}

} // namespace kestraboot::tools
