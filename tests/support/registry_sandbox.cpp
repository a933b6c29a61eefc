#include "tests/support/registry_sandbox.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <vector>

namespace kestraboot::tests
{
namespace
{

void Require(LONG status, const char* what)
{
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(what) + " failed: " + std::to_string(status));
    }
}

class Key
{
public:
    explicit Key(HKEY opened) : handle(opened) {}
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { ::RegCloseKey(handle); }
    HKEY handle;
};

HKEY Create(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    Require(::RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            "RegCreateKeyExW");
    return key;
}

std::wstring HomeOf(DWORD processId)
{
    return L"Software\\KestrabootTests\\" + std::to_wstring(processId) + L"-";
}

} // namespace

RegistrySandbox::RegistrySandbox()
{
    static std::atomic<int> count = 0;
    home = HomeOf(::GetCurrentProcessId()) + std::to_wstring(count++);
    machine = Create(HKEY_CURRENT_USER, home + L"\\machine");
    user = Create(HKEY_CURRENT_USER, home + L"\\user");
    Require(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), "RegOverridePredefKey");
    Require(::RegOverridePredefKey(HKEY_CURRENT_USER, user), "RegOverridePredefKey");
}

RegistrySandbox::~RegistrySandbox()
{
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegCloseKey(machine);
    ::RegCloseKey(user);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, home.c_str());
}

void RemoveSandboxesOf(unsigned long processId)
{
    for (int i = 0; ::RegDeleteTreeW(HKEY_CURRENT_USER,
                                     (HomeOf(processId) + std::to_wstring(i)).c_str()) == ERROR_SUCCESS;
         ++i) {
    }
}

void MakeKey(HKEY root, const std::wstring& path)
{
    const Key key(Create(root, path));
}

void RemoveKey(HKEY root, const std::wstring& path)
{
    Require(::RegDeleteTreeW(root, path.c_str()), "RegDeleteTreeW");
}

bool KeyExists(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    ::RegCloseKey(key);
    return true;
}

void PutBytes(HKEY root, const std::wstring& path, const wchar_t* name, DWORD type, const void* bytes,
              std::size_t size)
{
    const Key key(Create(root, path));
    // Wine reads the characters before and after a text argument.
    constexpr std::size_t kMargin = 8;
    std::vector<BYTE> data(kMargin + size + kMargin, BYTE{'x'});
    std::copy_n(static_cast<const BYTE*>(bytes), size, data.begin() + kMargin);
    Require(::RegSetValueExW(key.handle, name, 0, type, data.data() + kMargin, static_cast<DWORD>(size)),
            "RegSetValueExW");
}

void PutText(HKEY root, const std::wstring& path, const wchar_t* name, std::wstring_view text)
{
    const std::wstring terminated(text);
    PutBytes(root, path, name, REG_SZ, terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
}

void PutDword(HKEY root, const std::wstring& path, const wchar_t* name, std::uint32_t value)
{
    PutBytes(root, path, name, REG_DWORD, &value, sizeof value);
}

std::optional<std::uint32_t> StoredDword(HKEY root, const std::wstring& path, const wchar_t* name)
{
    std::uint32_t value = 0;
    DWORD size = sizeof value;
    if (::RegGetValueW(root, path.c_str(), name, RRF_RT_REG_DWORD, nullptr, &value, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::wstring> StoredText(HKEY root, const std::wstring& path, const wchar_t* name)
{
    wchar_t text[2048] = {};
    DWORD size = sizeof text;
    if (::RegGetValueW(root, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::wstring(text);
}

} // namespace kestraboot::tests
