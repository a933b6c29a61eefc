// A copy of the keys that the library reads, put in the place of HKEY_LOCAL_MACHINE and
// HKEY_CURRENT_USER for this process. The library writes when it loads: it creates per-user keys and
// keeps the auto-run entry. It does so in the copy, and the machine stays as it is.
//
// The copy lies below HKEY_CURRENT_USER\Software, in a key of this process's own, until it ends. What a
// process leaves that was ended in the middle the next copy removes. Its keys are not volatile, since
// those take none of the keys that the library makes.
#pragma once

#include "tools/ctl/registry_key.h"

#include <string>

namespace kestraboot::tools
{

class RegistryCopy
{
public:
    /// Throws std::runtime_error, with nothing left behind, where the copy cannot be made.
    RegistryCopy();
    RegistryCopy(const RegistryCopy&) = delete;
    RegistryCopy& operator=(const RegistryCopy&) = delete;
    ~RegistryCopy();

    /// From here on the machine's part of the copy holds one application's key, without values, and the
    /// values of the product's key above it. A search then finds that one alone, however many there are.
    void ShowOnly(const std::wstring& applicationKey);

private:
    void Fill();
    void Remove() noexcept;

    RegistryKey parent; ///< the real one, opened before it is replaced
    std::wstring name;
    RegistryKey home; ///< holds the copies
    RegistryKey machine;
    RegistryKey user;
    RegistryKey only; ///< takes the machine's place when one application alone is shown
};

} // namespace kestraboot::tools
