#include "tests/endurance/fuzz/hive.h"

#include <algorithm>
#include <cwctype>

namespace kestraboot::fuzz
{
namespace
{

wchar_t Lower(wchar_t character)
{
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + 32) : character;
}

/// The registry's order of subkeys, for names without the characters between the two cases of letters.
bool Before(const HiveKey& left, const HiveKey& right)
{
    return std::ranges::lexicographical_compare(left.name, right.name, {}, Lower, Lower);
}

std::pair<std::wstring_view, std::wstring_view> Split(std::wstring_view path)
{
    const std::size_t end = path.find(L'\\');
    return end == std::wstring_view::npos ? std::pair(path, std::wstring_view())
                                          : std::pair(path.substr(0, end), path.substr(end + 1));
}

} // namespace

bool SameText(std::wstring_view left, std::wstring_view right)
{
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

std::string BytesOf(std::wstring_view text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

HiveKey* HiveKey::Subkey(std::wstring_view subkey)
{
    for (HiveKey& key : subkeys) {
        if (SameText(key.name, subkey)) {
            return &key;
        }
    }
    return nullptr;
}

const HiveValue* HiveKey::Value(std::wstring_view value) const
{
    for (const HiveValue& stored : values) {
        if (SameText(stored.name, value)) {
            return &stored;
        }
    }
    return nullptr;
}

HiveKey& HiveKey::MakeSubkey(std::wstring_view subkey)
{
    if (HiveKey* const existing = Subkey(subkey)) {
        return *existing;
    }
    HiveKey made;
    made.name = subkey;
    return *subkeys.insert(std::ranges::find_if(subkeys,
                                                [&](const HiveKey& key) {
                                                    return Before(made, key);
                                                }),
                           made);
}

void HiveKey::Put(std::wstring_view value, DWORD type, std::string bytes)
{
    for (HiveValue& stored : values) {
        if (SameText(stored.name, value)) {
            stored.type = type;
            stored.bytes = std::move(bytes);
            return;
        }
    }
    values.push_back({std::wstring(value), type, std::move(bytes)});
}

void HiveKey::PutDword(std::wstring_view value, std::uint32_t number)
{
    Put(value, REG_DWORD, {reinterpret_cast<const char*>(&number), sizeof number});
}

void HiveKey::PutText(std::wstring_view value, const std::wstring& text)
{
    Put(value, REG_SZ, BytesOf({text.c_str(), text.size() + 1}));
}

HiveKey* Hive::Find(std::wstring_view path)
{
    HiveKey* key = &top;
    while (key != nullptr && !path.empty()) {
        const auto [name, rest] = Split(path);
        key = key->Subkey(name);
        path = rest;
    }
    return key;
}

HiveKey& Hive::Make(std::wstring_view path)
{
    HiveKey* key = &top;
    while (!path.empty()) {
        const auto [name, rest] = Split(path);
        key = &key->MakeSubkey(name);
        path = rest;
    }
    return *key;
}

} // namespace kestraboot::fuzz
