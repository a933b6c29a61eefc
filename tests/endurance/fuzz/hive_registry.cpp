#include "tests/endurance/fuzz/hive_registry.h"

#include <cstring>
#include <iterator>

namespace kestraboot::fuzz
{
namespace
{

std::wstring NameOf(const wchar_t* name)
{
    return name == nullptr ? L"" : name;
}

} // namespace

HiveRegistry::HiveRegistry()
    : open([this](HKEY root, const wchar_t* path, DWORD, REGSAM access, HKEY* opened) -> LONG {
          Hive& hive = root == HKEY_LOCAL_MACHINE ? machine : user;
          HiveKey* const key = hive.Find(NameOf(path));
          *opened = nullptr;
          if (key == nullptr) {
              return ERROR_FILE_NOT_FOUND;
          }
          if (!Grants(root, access)) {
              return ERROR_ACCESS_DENIED;
          }
          *opened = Opened(*key, access);
          return ERROR_SUCCESS;
      }),
      create([this](HKEY parent, const wchar_t* path, DWORD, wchar_t*, DWORD, REGSAM access,
                    SECURITY_ATTRIBUTES*, HKEY* created, DWORD*) -> LONG {
          HiveKey* key = Key(parent, KEY_CREATE_SUB_KEY);
          if (key == nullptr) {
              return ERROR_ACCESS_DENIED;
          }
          const std::wstring whole = NameOf(path);
          for (std::size_t at = 0; at < whole.size();) {
              const std::size_t end = std::min(whole.find(L'\\', at), whole.size());
              key = &key->MakeSubkey(whole.substr(at, end - at));
              at = end + 1;
          }
          *created = Opened(*key, access);
          return ERROR_SUCCESS;
      }),
      close([this](HKEY handle) -> LONG {
          return keys.erase(handle) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
      }),
      query([this](HKEY handle, const wchar_t* name, DWORD*, DWORD* type, BYTE* data,
                   DWORD* size) -> LONG {
          const HiveKey* const key = Key(handle, KEY_QUERY_VALUE);
          if (key == nullptr) {
              return ERROR_ACCESS_DENIED;
          }
          const HiveValue* const value = key->Value(NameOf(name));
          return value == nullptr ? ERROR_FILE_NOT_FOUND : Read(*value, type, data, size);
      }),
      set([this](HKEY handle, const wchar_t* name, DWORD, DWORD type, const BYTE* data,
                 DWORD size) -> LONG {
          HiveKey* const key = Key(handle, KEY_SET_VALUE);
          if (key == nullptr) {
              return ERROR_ACCESS_DENIED;
          }
          key->Put(NameOf(name), type, {reinterpret_cast<const char*>(data), size});
          return ERROR_SUCCESS;
      }),
      remove([this](HKEY handle, const wchar_t* name) -> LONG {
          HiveKey* const key = Key(handle, KEY_SET_VALUE);
          if (key == nullptr) {
              return ERROR_ACCESS_DENIED;
          }
          const auto removed = std::erase_if(key->values, [&](const HiveValue& value) {
              return SameText(value.name, NameOf(name));
          });
          return removed != 0 ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
      }),
      enumerate([this](HKEY handle, DWORD index, wchar_t* name, DWORD* length, DWORD*, wchar_t*, DWORD*,
                       FILETIME*) -> LONG {
          HiveKey* const key = Key(handle, KEY_ENUMERATE_SUB_KEYS);
          if (key == nullptr) {
              return ERROR_ACCESS_DENIED;
          }
          if (index >= key->subkeys.size()) {
              return ERROR_NO_MORE_ITEMS;
          }
          const std::wstring& subkey = std::next(key->subkeys.begin(), index)->name;
          if (subkey.size() >= *length) {
              return ERROR_MORE_DATA;
          }
          std::memcpy(name, subkey.c_str(), (subkey.size() + 1) * sizeof(wchar_t));
          *length = static_cast<DWORD>(subkey.size());
          return ERROR_SUCCESS;
      })
{
}

void HiveRegistry::Become(const Hive& wantedMachine, const Hive& wantedUser)
{
    keys.clear();
    machine = wantedMachine;
    user = wantedUser;
}

bool HiveRegistry::Grants(HKEY root, REGSAM access) const noexcept
{
    return root != HKEY_LOCAL_MACHINE || isAdministrators || (access & ~REGSAM{KEY_READ}) == 0;
}

HKEY HiveRegistry::Opened(HiveKey& key, REGSAM access)
{
    const auto handle = reinterpret_cast<HKEY>(++handles * 16);
    keys[handle] = {&key, access};
    return handle;
}

HiveKey* HiveRegistry::Key(HKEY handle, REGSAM needed)
{
    const auto found = keys.find(handle);
    return found != keys.end() && (found->second.access & needed) != 0 ? found->second.key : nullptr;
}

LONG HiveRegistry::Read(const HiveValue& value, DWORD* type, BYTE* data, DWORD* size) const
{
    const DWORD room = *size;
    *size = static_cast<DWORD>(value.bytes.size());
    if (type != nullptr) {
        *type = value.type;
    }
    if (data == nullptr) {
        return ERROR_SUCCESS;
    }
    std::memset(data, 0xCC, room);
    if (room < value.bytes.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, value.bytes.data(), value.bytes.size());
    return ERROR_SUCCESS;
}

} // namespace kestraboot::fuzz
