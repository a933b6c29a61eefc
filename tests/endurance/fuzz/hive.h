// A registry root in memory, for a model to read and for a test to store for real.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::fuzz
{

struct HiveValue {
    std::wstring name;
    DWORD type = REG_NONE;
    std::string bytes;
};

struct HiveKey {
    std::wstring name;
    std::vector<HiveValue> values;
    std::list<HiveKey> subkeys; ///< in the registry's order

    /// Null if missing. Names are the same in every letter case.
    [[nodiscard]] HiveKey* Subkey(std::wstring_view subkey);
    [[nodiscard]] const HiveValue* Value(std::wstring_view value) const;

    HiveKey& MakeSubkey(std::wstring_view subkey);
    void Put(std::wstring_view value, DWORD type, std::string bytes);
    void PutDword(std::wstring_view value, std::uint32_t number);
    void PutText(std::wstring_view value, const std::wstring& text);
};

/// Of HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER.
class Hive
{
public:
    [[nodiscard]] HiveKey* Find(std::wstring_view path);
    HiveKey& Make(std::wstring_view path);

    /// Stores everything below `root`, which must be empty.
    void StoreBelow(HKEY root) const;

    /// All keys and values, a line each.
    [[nodiscard]] std::vector<std::wstring> Lines() const;

private:
    HiveKey top;
};

/// The same of the real registry's content.
[[nodiscard]] std::vector<std::wstring> StoredLines(HKEY root);

/// Removes everything below the root.
void Empty(HKEY root);

/// The bytes of a text, without any terminator.
[[nodiscard]] std::string BytesOf(std::wstring_view text);

/// Only ASCII letters have two cases here.
[[nodiscard]] bool SameText(std::wstring_view left, std::wstring_view right);

} // namespace kestraboot::fuzz
