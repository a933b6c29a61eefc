#include "tools/ctl/registry_copy.h"

#include "tools/common/handle.h"
#include "tools/common/windows_error.h"
#include "tools/ctl/registry_names.h"

#include <cstdio>
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

/// `name` is the last part of `path`, or all of it.
void CopyTree(HKEY root, const std::wstring& path, const std::wstring& name, const RegistryKey& above)
{
    const RegistryKey from = OpenUnlessDenied(root, path);
    if (!from) {
        return;
    }
    const RegistryKey to = Create(above.Get(), name);
    for (const RegistryKey::Value& value : from.Values()) {
        Put(to, value);
    }
    const std::wstring below = path + L'\\';
    for (const std::wstring& subkey : from.Subkeys()) {
        CopyTree(root, below + subkey, subkey, to);
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
        return ::GetLastError() != ERROR_INVALID_PARAMETER; // such as another user's
    }
    return ::WaitForSingleObject(process.Get(), 0) != WAIT_OBJECT_0;
}

/// Removes the copies of processes that were terminated before they could. If that fails, the next run
/// tries again.
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
        RemoveOrSay();
        throw;
    }
}

RegistryCopy::~RegistryCopy()
{
    if (!closed) {
        RemoveOrSay();
    }
}

void RegistryCopy::Close()
{
    Require(Remove(), "remove the copy of the registry's keys");
    closed = true;
}

void RegistryCopy::Fill()
{
    home = Create(parent.Get(), name);
    machine = Create(home.Get(), L"machine");
    user = Create(home.Get(), L"user");
    CopyTree(HKEY_LOCAL_MACHINE, kCorvaneRoot, kCorvaneRoot, machine);
    CopyTree(HKEY_LOCAL_MACHINE, kAutoPlayKey, kAutoPlayKey, machine);
    CopyTree(HKEY_CURRENT_USER, kCorvaneRoot, kCorvaneRoot, user);
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
    const LONG emptied = ::RegDeleteTreeW(only.Get(), kSoftware); // of the application before
    if (emptied != ERROR_FILE_NOT_FOUND) {
        Require(emptied, "change the copy of the registry's keys");
    }
    static_cast<void>(Create(only.Get(), applicationKey));
    const std::wstring product = applicationKey.substr(0, applicationKey.find(kApplicationTail));
    const RegistryKey to = Create(only.Get(), product);
    for (const RegistryKey::Value& value : RegistryKey(machine.Get(), product).Values()) {
        Put(to, value);
    }
}

/// Takes every step, whichever fails; returns the first failure.
LONG RegistryCopy::Remove() noexcept
{
    LONG first = ERROR_SUCCESS;
    const auto note = [&](LONG status) {
        first = first != ERROR_SUCCESS ? first : status;
    };
    note(::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr));
    note(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr));
    home = RegistryKey();
    machine = RegistryKey();
    user = RegistryKey();
    only = RegistryKey();
    note(::RegDeleteTreeW(parent.Get(), name.c_str()));
    return first;
}

void RegistryCopy::RemoveOrSay() noexcept
{
    const LONG status = Remove();
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) { // there is none if making it failed
        std::fprintf(
            stderr,
            "kestractl: cannot remove the copy of the registry's keys (error %ld): the next run "
            "removes it\n",
            status);
    }
}

} // namespace kestraboot::tools
