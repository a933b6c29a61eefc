// A copy of the keys that the library reads, in place of HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER
// for this process. The library writes when it loads: it creates per-user keys and sets the
// auto-run entry. It does so in the copy, and the machine is unchanged.
//
// The copy is below HKEY_CURRENT_USER\Software, in a key of this process's own, until the process
// ends. If a process is terminated before it removes its copy, the next copy removes it. The keys
// are not volatile, because volatile keys cannot contain the keys that the library creates.
#pragma once

#include "tools/ctl/registry_key.h"

#include <string>

namespace kestraboot::tools
{

class RegistryCopy
{
public:
    /// Throws std::runtime_error, with nothing left behind, if the copy cannot be made.
    RegistryCopy();
    RegistryCopy(const RegistryCopy&) = delete;
    RegistryCopy& operator=(const RegistryCopy&) = delete;

    /// Removes the copy if Close has not. Standard error says so if it stays.
    ~RegistryCopy();

    /// Removes the copy; the machine's own keys are in their places again. Throws std::runtime_error if
    /// that fails: the program then does not see the machine's keys.
    void Close();

    /// From here on the machine's part of the copy has one application's key, without values, and
    /// the values of the product's key above it. A search then finds that application alone.
    void ShowOnly(const std::wstring& applicationKey);

private:
    void Fill();
    [[nodiscard]] LONG Remove() noexcept;
    void RemoveOrSay() noexcept;

    RegistryKey parent; ///< the real one, opened before it is replaced
    std::wstring name;
    RegistryKey home; ///< holds the copies
    RegistryKey machine;
    RegistryKey user;
    bool closed = false;
    RegistryKey only; ///< replaces the machine's part when one application alone is shown
};

} // namespace kestraboot::tools
