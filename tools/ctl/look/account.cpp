#include "tools/common/handle.h"
#include "tools/ctl/look/look.h"

#include <windows.h>
#include <memory>
#include <wtsapi32.h>

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kLongestName = 256;

Handle TokenOf(HANDLE process)
{
    HANDLE token = nullptr;
    return Handle(::OpenProcessToken(process, TOKEN_QUERY, &token) ? token : nullptr);
}

std::optional<std::wstring> SessionText(WTS_INFO_CLASS what)
{
    wchar_t* text = nullptr;
    DWORD size = 0;
    if (!::WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, WTS_CURRENT_SESSION, what, &text,
                                       &size) ||
        text == nullptr) {
        return std::nullopt;
    }
    const std::unique_ptr<wchar_t, decltype(&::WTSFreeMemory)> owner(text, ::WTSFreeMemory);
    return std::wstring(text);
}

std::optional<std::wstring> LoggedOn()
{
    const std::optional<std::wstring> user = SessionText(WTSUserName);
    const std::optional<std::wstring> domain = SessionText(WTSDomainName);
    if (!user || user->empty() || !domain) {
        return std::nullopt;
    }
    return *domain + L"\\" + *user;
}

} // namespace

std::optional<std::wstring> AccountOf(void* process)
{
    const Handle token = TokenOf(process);
    alignas(TOKEN_USER) BYTE user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE] = {};
    DWORD size = 0;
    wchar_t name[kLongestName + 1] = {};
    wchar_t domain[kLongestName + 1] = {};
    DWORD nameLength = kLongestName;
    DWORD domainLength = kLongestName;
    SID_NAME_USE use = SidTypeUser;
    if (!token || !::GetTokenInformation(token.Get(), TokenUser, user, sizeof user, &size) ||
        !::LookupAccountSidW(nullptr, reinterpret_cast<const TOKEN_USER*>(user)->User.Sid, name,
                             &nameLength, domain, &domainLength, &use)) {
        return std::nullopt;
    }
    return std::wstring(domain) + L"\\" + name;
}

std::optional<bool> IsElevated(void* process)
{
    // Only an account that has a second, smaller set of privileges can be elevated.
    const Handle token = TokenOf(process);
    TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
    DWORD size = 0;
    if (!token || !::GetTokenInformation(token.Get(), TokenElevationType, &type, sizeof type, &size)) {
        return std::nullopt;
    }
    return type == TokenElevationTypeFull;
}

Account LookAtAccount()
{
    Account account;
    account.user = AccountOf(::GetCurrentProcess()).value_or(kUnknownUser);
    account.loggedOn = LoggedOn();
    DWORD session = 0;
    account.session = ::ProcessIdToSessionId(::GetCurrentProcessId(), &session) ? std::optional(session)
                                                                                : std::nullopt;
    return account;
}

} // namespace kestraboot::tools
