#include "legacy/auto_launch.h"

#include "foundation/text.h"
#include "legacy/organiser.h"

#include <process.h>

namespace kestraboot
{
namespace
{

void RunDeviceConnectProgram(const wchar_t* option)
{
    appInfo_tag organiser;
    if (!ReadOrganiserInfo(organiser) || organiser.ProxyPath.empty()) {
        return;
    }
    const std::wstring quotedPath = QuoteUnlessQuoted(organiser.ProxyPath);
    // A detached start gives no handle; whether it worked makes no difference to anything here.
    static_cast<void>(::_wspawnlp(_P_DETACH, organiser.ProxyPath.c_str(), quotedPath.c_str(), option,
                                  static_cast<const wchar_t*>(nullptr)));
}

} // namespace

void StartOrganiserAutoLaunch()
{
    RunDeviceConnectProgram(L"-i");
}

void StopOrganiserAutoLaunch()
{
    RunDeviceConnectProgram(L"-d");
}

} // namespace kestraboot
