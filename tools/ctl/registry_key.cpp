#include "tools/ctl/registry_key.h"

#include "tools/common/utf8.h"
#include "tools/common/windows_error.h"
#include "tools/ctl/unread.h"

#include <cstring>

namespace kestraboot::tools
{
namespace
{

std::string NameOf(HKEY root, const std::wstring& path)
{
    const char* const above = root == HKEY_LOCAL_MACHINE  ? "HKEY_LOCAL_MACHINE\\"
                              : root == HKEY_CURRENT_USER ? "HKEY_CURRENT_USER\\"
                                                          : "";
    return above + ToUtf8(path);
}

/// Whether there is one more; throws if that is not known.
bool IsMore(LONG status, const char* what)
{
    if (status != ERROR_SUCCESS && status != ERROR_NO_MORE_ITEMS) {
        throw RegistryError(status, what);
    }
    return status == ERROR_SUCCESS;
}

} // namespace

RegistryError::RegistryError(LONG status, const std::string& what)
    : std::runtime_error("cannot " + what + ": " + WindowsErrorText(static_cast<unsigned long>(status))),
      denied(status == ERROR_ACCESS_DENIED)
{
}

RegistryKey::RegistryKey(HKEY root, const std::wstring& path, REGSAM access)
{
    const LONG status = ::RegOpenKeyExW(root, path.c_str(), 0, access, &key);
    if (status != ERROR_SUCCESS) {
        key = nullptr;
        if (status != ERROR_FILE_NOT_FOUND && status != ERROR_PATH_NOT_FOUND) {
            throw RegistryError(status, "open " + NameOf(root, path));
        }
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
    for (DWORD index = 0; key != nullptr; ++index) {
        auto length = static_cast<DWORD>(name.size());
        if (!IsMore(
                ::RegEnumValueW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr),
                "list the values of a key of the registry")) {
            break;
        }
        if (std::optional<Value> value = Find(name.substr(0, length).c_str())) {
            values.push_back(std::move(*value));
        }
    }
    return values;
}

std::optional<RegistryKey::Value> RegistryKey::Find(const wchar_t* name) const
{
    if (key == nullptr) {
        return std::nullopt;
    }
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
    if (status != ERROR_FILE_NOT_FOUND) {
        throw RegistryError(status, "read the value \"" + ToUtf8(value.name) + "\" of the registry");
    }
    return std::nullopt;
}

std::vector<std::wstring> RegistryKey::Subkeys() const
{
    std::vector<std::wstring> names;
    wchar_t name[256] = {}; // no key's name is longer
    for (DWORD index = 0; key != nullptr; ++index) {
        DWORD length = 256;
        if (!IsMore(::RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr),
                    "list the keys of the registry")) {
            break;
        }
        names.emplace_back(name, length);
    }
    return names;
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

RegistryKey OpenUnlessDenied(HKEY root, const std::wstring& path, REGSAM access)
{
    try {
        return RegistryKey(root, path, access);
    } catch (const RegistryError& error) {
        if (!error.IsDenied()) {
            throw;
        }
        TellUnread(std::string(error.what()) + "; it is left out");
        return RegistryKey();
    }
}

} // namespace kestraboot::tools
