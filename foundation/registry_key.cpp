#include "foundation/registry_key.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace kestraboot
{
namespace
{

constexpr DWORD kNameCapacity = 128; // characters of a subkey's name, the terminator included

// Values are written without their terminator.
DWORD BytesWithoutTerminator(std::size_t characters) noexcept
{
    return static_cast<DWORD>(characters * sizeof(wchar_t));
}

} // namespace

RegistryKey::RegistryKey(HKEY root, const std::wstring& subkey, REGSAM access)
{
    HKEY opened = nullptr;
    status = ::RegOpenKeyExW(root, subkey.c_str(), 0, access, &opened);
    if (status == ERROR_SUCCESS) {
        key.reset(opened);
    }
}

RegistryKey RegistryKey::OpenCurrentUser(const std::wstring& subkey, REGSAM access)
{
    return {HKEY_CURRENT_USER, subkey, access};
}

RegistryKey RegistryKey::OpenLocalMachine(const std::wstring& subkey, REGSAM access)
{
    return {HKEY_LOCAL_MACHINE, subkey, access};
}

void RegistryKey::Close() noexcept
{
    if (key) {
        status = ::RegCloseKey(key.release());
    }
    valueBuffer.reset();
    nameBuffer.reset();
}

UniqueRegistryHandle RegistryKey::CreateSubkeyWithString(const std::wstring& subkey,
                                                         const wchar_t* valueName, const wchar_t* data)
{
    if (!key) {
        return {};
    }
    HKEY created = nullptr;
    status = ::RegCreateKeyExW(key.get(), subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                               nullptr, &created, nullptr);
    if (status != ERROR_SUCCESS) {
        return {};
    }
    UniqueRegistryHandle owned(created);
    if (data != nullptr) {
        status = ::RegSetValueExW(owned.get(), valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(data),
                                  BytesWithoutTerminator(std::wcslen(data)));
    }
    return owned;
}

const wchar_t* RegistryKey::EnumSubkey(std::uint32_t index)
{
    if (!key) {
        return nullptr;
    }
    if (!nameBuffer) {
        nameBuffer = std::make_unique_for_overwrite<wchar_t[]>(kNameCapacity);
    }
    DWORD capacity = kNameCapacity;
    FILETIME lastWritten = {};
    status = ::RegEnumKeyExW(key.get(), index, nameBuffer.get(), &capacity, nullptr, nullptr, nullptr,
                             &lastWritten);
    return status == ERROR_SUCCESS ? nameBuffer.get() : nullptr;
}

std::int32_t RegistryKey::QueryDword(const wchar_t* valueName)
{
    if (!key) {
        return -1;
    }
    DWORD type = REG_DWORD;
    std::int32_t value = 0;
    DWORD size = sizeof value;
    status =
        ::RegQueryValueExW(key.get(), valueName, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    return status == ERROR_SUCCESS && size == sizeof value ? value : -1;
}

const wchar_t* RegistryKey::QueryString(const wchar_t* valueName)
{
    if (!key) {
        return nullptr;
    }
    DWORD type = REG_SZ;
    DWORD size = 0;
    // A missing value leaves the size at 0; the read below then says so.
    static_cast<void>(::RegQueryValueExW(key.get(), valueName, nullptr, &type, nullptr, &size));

    MakeRoom(size);
    size = valueBufferBytes;
    status = ::RegQueryValueExW(key.get(), valueName, nullptr, &type,
                                reinterpret_cast<BYTE*>(valueBuffer.get()), &size);
    if (status != ERROR_SUCCESS || !valueBuffer) {
        return nullptr; // a value that grew in between fails here, and valueBufferBytes stays true
    }
    valueBufferBytes = size;
    auto* const end = reinterpret_cast<BYTE*>(valueBuffer.get()) + size;
    std::memset(end, 0, sizeof(wchar_t) + size % sizeof(wchar_t));
    return valueBuffer.get();
}

void RegistryKey::MakeRoom(DWORD bytes)
{
    constexpr DWORD kUsualRoom = 512; // most texts are shorter: one allocation serves a whole key

    if (bytes > valueBufferRoom) {
        valueBufferBytes = 0;
        valueBufferRoom = 0;
        valueBuffer.reset();
        const DWORD room = std::max(bytes, kUsualRoom);
        // An odd last byte takes a character of its own, and one more is the terminator.
        valueBuffer = std::make_unique_for_overwrite<wchar_t[]>(std::size_t{room} / sizeof(wchar_t) + 2);
        valueBufferRoom = room;
    }
    valueBufferBytes = std::max(bytes, valueBufferBytes);
}

bool RegistryKey::DeleteValue(const wchar_t* valueName)
{
    if (!key) {
        return false;
    }
    status = ::RegDeleteValueW(key.get(), valueName);
    return status == ERROR_SUCCESS;
}

void RegistryKey::SetDword(const wchar_t* valueName, std::uint32_t value)
{
    if (key) {
        status = ::RegSetValueExW(key.get(), valueName, 0, REG_DWORD,
                                  reinterpret_cast<const BYTE*>(&value), sizeof value);
    }
}

void RegistryKey::SetString(const wchar_t* valueName, const std::wstring& text)
{
    if (key) {
        status = ::RegSetValueExW(key.get(), valueName, 0, REG_SZ,
                                  reinterpret_cast<const BYTE*>(text.c_str()),
                                  BytesWithoutTerminator(text.size()));
    }
}

} // namespace kestraboot
