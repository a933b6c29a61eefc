#include "registry/run_value.h"

#include "foundation/registry_key.h"
#include "foundation/text.h"

#include <shlwapi.h>

namespace kestraboot
{
namespace
{

constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";

} // namespace

bool SetRunValue(const std::wstring& proxyPath)
{
    if (!::PathFileExistsW(proxyPath.c_str())) {
        return false;
    }
    RegistryKey run = RegistryKey::OpenLocalMachine(kRunKey, KEY_WRITE);
    if (!run.IsOpen()) {
        return false;
    }
    run.SetString(kRunValue, QuoteUnlessQuoted(proxyPath));
    return true;
}

bool DeleteRunValue()
{
    RegistryKey run = RegistryKey::OpenLocalMachine(kRunKey, KEY_ALL_ACCESS);
    if (!run.IsOpen()) {
        return false;
    }
    static_cast<void>(run.DeleteValue(kRunValue)); // a missing value is no error
    return true;
}

} // namespace kestraboot
