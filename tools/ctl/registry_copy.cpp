#include "tools/ctl/registry_copy.h"

#include "tools/common/handle.h"
#include "tools/common/windows_error.h"
#include "tools/ctl/registry_names.h"

#include <cstdlib>
#include <stdexcept>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kParent = L"Software";
constexpr const wchar_t* kSoftware = L"SOFTWARE";
constexpr const wchar_t* kApplicationTail = L"\\Corvane Kestrafetch"; // which the library removes
constexpr const wchar_t* kNamePrefix = L"kestractl copy ";

void Require(LONG status, const char* what)
{
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string("cannot ") + what + ": " +
                                 WindowsErrorText(static_cast<unsigned long>(status)));
    }
}

RegistryKey Create(HKEY parent, const std::wstring& path)
{
    HKEY created = nullptr;
    Require(::RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &created, nullptr),
            "make a copy of the registry's keys");
    return RegistryKey(created);
}

void Put(const RegistryKey& to, const RegistryKey::Value& value)
{
    Require(::RegSetValueExW(to.Get(), value.name.c_str(), 0, value.type, value.bytes.data(),
                             static_cast<DWORD>(value.bytes.size())),
            "copy a value of the registry");
}

/// Keys that may not be read are left out, as the library skips them.
void CopyTree(const RegistryKey& from, const RegistryKey& to)
{
    for (const RegistryKey::Value& value : from.Values()) {
        Put(to, value);
    }
    for (const std::wstring& subkey : from.Subkeys()) {
        const RegistryKey child(from.Get(), subkey);
        if (child) {
            CopyTree(child, Create(to.Get(), subkey));
        }
    }
}

void CopyTree(HKEY root, const wchar_t* path, const RegistryKey& to)
{
    const RegistryKey from(root, path);
    if (from) {
        CopyTree(from, Create(to.Get(), path));
    }
}

void CopyRunValue(const RegistryKey& to)
{
    const RegistryKey from(HKEY_LOCAL_MACHINE, kRunKey);
    const RegistryKey run = Create(to.Get(), kRunKey);
    if (const auto value = from.Find(kRunValue)) {
        Put(run, *value);
    }
}

/// Whether that process runs and is not this one.
bool IsOfAnother(DWORD processId) noexcept
{
    if (processId == ::GetCurrentProcessId()) {
        return false; // an earlier one had the same number
    }
    const Handle process(::OpenProcess(SYNCHRONIZE, FALSE, processId));
    if (!process) {
        return ::GetLastError() == ERROR_ACCESS_DENIED; // another user's
    }
    return ::WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT;
}

/// Removes the copies of processes that were terminated before they could.
void RemoveLeftCopies(const RegistryKey& parent)
{
    const std::wstring prefix = kNamePrefix;
    for (const std::wstring& subkey : parent.Subkeys()) {
        if (subkey.starts_with(prefix) &&
            !IsOfAnother(std::wcstoul(subkey.c_str() + prefix.size(), nullptr, 10))) {
            static_cast<void>(::RegDeleteTreeW(parent.Get(), subkey.c_str()));
        }
    }
}

} // namespace

RegistryCopy::RegistryCopy()
    : parent(HKEY_CURRENT_USER, kParent, KEY_ALL_ACCESS),
      name(kNamePrefix + std::to_wstring(::GetCurrentProcessId()))
{
    if (!parent) {
        throw std::runtime_error("cannot open HKEY_CURRENT_USER\\Software for a copy of the keys");
    }
    RemoveLeftCopies(parent);
    try {
        Fill();
    } catch (...) {
        Remove();
        throw;
    }
}

RegistryCopy::~RegistryCopy()
{
    Remove();
}

void RegistryCopy::Fill()
{
    home = Create(parent.Get(), name);
    machine = Create(home.Get(), L"machine");
    user = Create(home.Get(), L"user");
    CopyTree(HKEY_LOCAL_MACHINE, kCorvaneRoot, machine);
    CopyTree(HKEY_LOCAL_MACHINE, kAutoPlayKey, machine);
    CopyTree(HKEY_CURRENT_USER, kCorvaneRoot, user);
    CopyRunValue(machine);
    Require(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine.Get()), "put the copy in place");
    Require(::RegOverridePredefKey(HKEY_CURRENT_USER, user.Get()), "put the copy in place");
}

void RegistryCopy::ShowOnly(const std::wstring& applicationKey)
{
    if (!only) {
        only = Create(home.Get(), L"only");
        Require(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, only.Get()), "put the copy in place");
    }
    ::RegDeleteTreeW(only.Get(), kSoftware); // of the application before
    static_cast<void>(Create(only.Get(), applicationKey));
    const std::wstring product = applicationKey.substr(0, applicationKey.find(kApplicationTail));
    const RegistryKey to = Create(only.Get(), product);
    for (const RegistryKey::Value& value : RegistryKey(machine.Get(), product).Values()) {
        Put(to, value);
    }
}

void RegistryCopy::Remove() noexcept
{
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    home = RegistryKey();
    machine = RegistryKey();
    user = RegistryKey();
    only = RegistryKey();
    static_cast<void>(::RegDeleteTreeW(parent.Get(), name.c_str()));
}

} // namespace kestraboot::tools
