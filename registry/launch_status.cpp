// An application's proxy asks about itself: may it launch, and which language does it use.
#include "foundation/registry_key.h"
#include "kestraboot/information_handler.h"
#include "registry/own_application.h"
#include "registry/registry_layout.h"

#include <optional>

using namespace kestraboot;

namespace
{

constexpr const wchar_t* kLaunchStatus = L"kestralaunchstatus";

/// The key above the running application's "Corvane Kestrafetch" key; its path is the same in both
/// hives.
std::optional<std::wstring> FindOwnKey(CKestraBootInformationHandler& handler)
{
    appInfo_tag own; // stays empty if the running program is no application's proxy
    static_cast<void>(FindOwnApplication(handler, own));
    const std::size_t end = own.KeyPath.find(std::wstring(L"\\") + kApplicationKeyName);
    if (end == std::wstring::npos) {
        return std::nullopt;
    }
    return own.KeyPath.substr(0, end);
}

} // namespace

bool CKestraBootInformationHandler::GetKestraLaunchStatus()
{
    const std::optional<std::wstring> ownKey = FindOwnKey(*this);
    if (!ownKey) {
        return true;
    }
    RegistryKey key = RegistryKey::OpenCurrentUser(*ownKey, KEY_READ);
    if (!key.IsOpen()) {
        return true;
    }
    const std::int32_t launchStatus = key.QueryDword(kLaunchStatus);
    if (launchStatus == -1) {
        // Windows refuses this, because the key is open for reading only: a query never creates the
        // value.
        key.SetDword(kLaunchStatus, 1);
        return true;
    }
    return launchStatus != 0;
}

bool CKestraBootInformationHandler::SetKestraLaunchStatus(std::int32_t status)
{
    const std::optional<std::wstring> ownKey = FindOwnKey(*this);
    if (!ownKey) {
        return false;
    }
    RegistryKey key = RegistryKey::OpenCurrentUser(*ownKey, KEY_WRITE);
    if (!key.IsOpen()) {
        return false;
    }
    key.SetDword(kLaunchStatus, static_cast<std::uint32_t>(status));
    return key.Status() == ERROR_SUCCESS;
}

bool CKestraBootInformationHandler::GetKestraLocaleString(std::wstring& locale)
{
    locale = L"en_us";
    const std::optional<std::wstring> ownKey = FindOwnKey(*this);
    if (!ownKey) {
        return false;
    }
    RegistryKey key = RegistryKey::OpenLocalMachine(*ownKey, KEY_READ);
    const wchar_t* const stored = key.QueryString(L"locale");
    if (stored == nullptr || *stored == L'\0') {
        return false;
    }
    locale = stored;
    return true;
}
