#include "trackers/still_image/twain_source.h"

#include "foundation/registry_key.h"
#include "trackers/still_image/twain_session.h"

#include <windows.h>
#include <cstring>
#include <string>

namespace kestraboot
{
namespace
{

// More sources than any machine has: a source manager without an end must not block the thread
// forever.
constexpr int kMostSources = 65'535;

/// A source may use all 34 bytes of its name and leave no terminator.
void WidenProductName(const twain::TW_STR32& name, TextField& wide) noexcept
{
    char terminated[sizeof name + 1] = {};
    std::memcpy(terminated, name, sizeof name);
    if (::MultiByteToWideChar(CP_ACP, 0, terminated, -1, wide, kFieldCapacity) == 0) {
        wide[0] = L'\0';
    }
}

bool IsWiaBridge(const wchar_t* productName) noexcept
{
    constexpr wchar_t kPrefix[] = L"WIA-";
    return _wcsnicmp(productName, kPrefix, std::size(kPrefix) - 1) == 0;
}

} // namespace

bool FindTwainSource(const wchar_t* internalName, TextField* dataSource)
{
    if (internalName == nullptr || dataSource == nullptr) {
        return false;
    }
    RegistryKey key = RegistryKey::OpenLocalMachine(
        std::wstring(L"SYSTEM\\CurrentControlSet\\Control\\Class\\") + internalName + L"\\DeviceData",
        KEY_READ);
    const wchar_t* const name = key.QueryString(L"TwainDS");
    if (name == nullptr) {
        return false;
    }
    CopyToField(*dataSource, name);
    return true;
}

bool TwainSourceListed(const wchar_t* dataSource) noexcept
{
    TwainSession session;
    if (dataSource == nullptr || !session.IsOpen()) {
        return false;
    }
    twain::TW_IDENTITY source = {};
    bool got = session.FirstSource(source);
    for (int visited = 0; got && visited < kMostSources; ++visited) {
        TextField productName = {};
        WidenProductName(source.ProductName, productName);
        if (!IsWiaBridge(productName) && _wcsicmp(productName, dataSource) == 0) {
            return true;
        }
        got = session.NextSource(source);
    }
    return false;
}

} // namespace kestraboot
