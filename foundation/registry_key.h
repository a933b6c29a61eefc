#pragma once

#include "foundation/handles.h"

#include <windows.h>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kestraboot
{

/// One registry key: the only way to the registry in this system.
///
/// No operation throws for a registry failure: the result shows it (null, false, -1), and Status()
/// holds the Win32 code of the last call. If no key is open, an operation returns its failure
/// result without a call of the registry. Only exhausted memory throws. Not for use by two threads
/// at once.
class RegistryKey
{
public:
    /// Both open `subkey` with an access mask of winnt.h (KEY_READ, KEY_WRITE, KEY_ALL_ACCESS).
    [[nodiscard]] static RegistryKey OpenCurrentUser(const std::wstring& subkey, REGSAM access);
    [[nodiscard]] static RegistryKey OpenLocalMachine(const std::wstring& subkey, REGSAM access);

    RegistryKey(RegistryKey&&) noexcept = default;
    RegistryKey& operator=(RegistryKey&&) = delete;
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey() { Close(); }

    /// Closes the key and frees the buffers; also right after a failed open, and more than once.
    void Close() noexcept;

    /// Creates or opens a subkey and, if `data` is not null, writes it as a string value. The
    /// caller owns the returned key; it is null on failure.
    [[nodiscard]] UniqueRegistryHandle
    CreateSubkeyWithString(const std::wstring& subkey, const wchar_t* valueName, const wchar_t* data);

    /// The name of the subkey at `index`, or null at the end, for a name of 128 characters or more, and
    /// on any other failure. Valid until the next call of EnumSubkey or Close.
    [[nodiscard]] const wchar_t* EnumSubkey(std::uint32_t index);

    /// The value, or -1 if it is missing or is not four bytes. A stored 0xFFFFFFFF looks missing.
    [[nodiscard]] std::int32_t QueryDword(const wchar_t* valueName);

    /// The bytes of a value of any type, as text. Null if the value is missing, or if it is empty
    /// and this object has read no text yet. A terminating zero follows the stored bytes whether or
    /// not they contain one, and an odd last byte is the low half of a character. Valid until the
    /// next QueryString or Close.
    [[nodiscard]] const wchar_t* QueryString(const wchar_t* valueName);

    [[nodiscard]] bool DeleteValue(const wchar_t* valueName);
    void SetDword(const wchar_t* valueName, std::uint32_t value);

    /// Stores the characters without a terminator: readers rely on the registry's own termination.
    void SetString(const wchar_t* valueName, const std::wstring& text);

    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(key); }
    [[nodiscard]] LONG Status() const noexcept { return status; }

private:
    RegistryKey(HKEY root, const std::wstring& subkey, REGSAM access);

    /// Makes room for a text of so many bytes.
    void MakeRoom(DWORD bytes);

    LONG status = ERROR_SUCCESS; ///< of the last registry call made through this object
    UniqueRegistryHandle key;
    DWORD valueBufferBytes = 0; ///< size offered to the next read, never more than the room
    DWORD valueBufferRoom = 0;  ///< bytes of text that fit in the buffer; more are allocated
    std::unique_ptr<wchar_t[]> valueBuffer;
    std::unique_ptr<wchar_t[]> nameBuffer;
};

} // namespace kestraboot
