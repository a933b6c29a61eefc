#pragma once

#include <windows.h>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tools
{

/// The registry did not answer: something exists, and cannot be read.
class RegistryError : public std::runtime_error
{
public:
    RegistryError(LONG status, const std::string& what);

    [[nodiscard]] bool IsDenied() const noexcept { return denied; }

private:
    bool denied;
};

/// An open key, or none. Reading from a key that does not exist finds nothing.
class RegistryKey
{
public:
    RegistryKey() noexcept = default;
    explicit RegistryKey(HKEY owned) noexcept : key(owned) {}

    /// No key if there is none; throws RegistryError if it cannot be opened.
    RegistryKey(HKEY root, const std::wstring& path, REGSAM access = KEY_READ);
    RegistryKey(RegistryKey&& other) noexcept : key(std::exchange(other.key, nullptr)) {}
    RegistryKey& operator=(RegistryKey&& other) noexcept
    {
        std::swap(key, other.key);
        return *this;
    }
    ~RegistryKey();

    [[nodiscard]] HKEY Get() const noexcept { return key; }
    [[nodiscard]] explicit operator bool() const noexcept { return key != nullptr; }

    struct Value {
        std::wstring name;
        DWORD type = 0;
        std::vector<std::uint8_t> bytes;
    };
    // Each of these throws RegistryError if something that exists cannot be read.
    [[nodiscard]] std::vector<Value> Values() const;
    [[nodiscard]] std::optional<Value> Find(const wchar_t* name) const;

    /// In the registry's order.
    [[nodiscard]] std::vector<std::wstring> Subkeys() const;

    /// As the library reads it: up to the first zero, whatever the value's type.
    [[nodiscard]] std::optional<std::wstring> Text(const wchar_t* name) const;

    /// As the library reads it: four bytes, of which 0xFFFFFFFF counts as missing.
    [[nodiscard]] std::optional<std::uint32_t> Number(const wchar_t* name) const;

private:
    HKEY key = nullptr;
};

/// No key if it may not be read, either: the library skips such a key, and standard error names it.
[[nodiscard]] RegistryKey OpenUnlessDenied(HKEY root, const std::wstring& path,
                                           REGSAM access = KEY_READ);

} // namespace kestraboot::tools
