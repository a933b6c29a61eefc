#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tests
{

/// During its lifetime replaces HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER for this process by empty keys
/// of the test's own, and removes them afterwards.
class RegistrySandbox
{
public:
    RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;
    ~RegistrySandbox();

    /// The key in the place of HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER.
    [[nodiscard]] HKEY InPlaceOf(HKEY root) const noexcept
    {
        return root == HKEY_LOCAL_MACHINE ? machine : user;
    }

private:
    std::wstring home; ///< below the real HKEY_CURRENT_USER
    HKEY machine = nullptr;
    HKEY user = nullptr;
};

/// Removes the sandbox keys of a process that was terminated.
void RemoveSandboxesOf(unsigned long processId);

/// Creates a key (and those above it) under a root.
void MakeKey(HKEY root, const std::wstring& path);

void RemoveKey(HKEY root, const std::wstring& path);

[[nodiscard]] bool KeyExists(HKEY root, const std::wstring& path);

/// Each creates the key if it is missing. Text is stored with its terminator, as most programs do.
void PutText(HKEY root, const std::wstring& path, const wchar_t* name, std::wstring_view text);
void PutDword(HKEY root, const std::wstring& path, const wchar_t* name, std::uint32_t value);
void PutBytes(HKEY root, const std::wstring& path, const wchar_t* name, DWORD type, const void* bytes,
              std::size_t size);

/// The stored value; empty if key or value is missing.
[[nodiscard]] std::optional<std::uint32_t> StoredDword(HKEY root, const std::wstring& path,
                                                       const wchar_t* name);
[[nodiscard]] std::optional<std::wstring> StoredText(HKEY root, const std::wstring& path,
                                                     const wchar_t* name);

} // namespace kestraboot::tests
