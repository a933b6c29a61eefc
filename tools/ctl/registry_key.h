#pragma once

#include <windows.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tools
{

/// An open key. Reading from a key that did not open finds nothing.
class RegistryKey
{
public:
    RegistryKey() noexcept = default;
    explicit RegistryKey(HKEY owned) noexcept : key(owned) {}
    RegistryKey(HKEY root, const std::wstring& path, REGSAM access = KEY_READ) noexcept;
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

} // namespace kestraboot::tools
