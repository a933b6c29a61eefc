#pragma once

#include "tests/endurance/fuzz/hive.h"
#include "tests/support/import_patch.h"

#include <map>

namespace kestraboot::fuzz
{

/// A registry in memory in the place of the real one: the same answers, a hundred times as fast. It is
/// hostile where the real one may be: it fills the room that is offered beyond a value's bytes with
/// garbage. It grants a standard user's permissions on Windows: below the machine's root only reading.
class HiveRegistry
{
public:
    HiveRegistry();
    HiveRegistry(const HiveRegistry&) = delete;
    HiveRegistry& operator=(const HiveRegistry&) = delete;

    void Become(const Hive& wantedMachine, const Hive& wantedUser);

    [[nodiscard]] std::size_t OpenKeys() const noexcept { return keys.size(); }

    Hive machine;
    Hive user;
    bool isAdministrators = false; ///< whether the machine's keys may be written too

private:
    struct OpenKey {
        HiveKey* key = nullptr;
        REGSAM access = 0;
    };

    [[nodiscard]] bool Grants(HKEY root, REGSAM access) const noexcept;
    HKEY Opened(HiveKey& key, REGSAM access);
    /// Null if the handle does not allow that.
    HiveKey* Key(HKEY handle, REGSAM needed);
    LONG Read(const HiveValue& value, DWORD* type, BYTE* data, DWORD* size) const;

    std::map<HKEY, OpenKey> keys;
    std::uintptr_t handles = 0x10000;
    FAKE_IMPORT(RegOpenKeyExW) open;
    FAKE_IMPORT(RegCreateKeyExW) create;
    FAKE_IMPORT(RegCloseKey) close;
    FAKE_IMPORT(RegQueryValueExW) query;
    FAKE_IMPORT(RegSetValueExW) set;
    FAKE_IMPORT(RegDeleteValueW) remove;
    FAKE_IMPORT(RegEnumKeyExW) enumerate;
};

} // namespace kestraboot::fuzz
