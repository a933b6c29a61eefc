#include "legacy/proxy_launch.h"

#include "foundation/handles.h"
#include "foundation/text.h"

#include <cstdint>
#include <process.h>

namespace kestraboot
{
namespace
{

const wchar_t* TypeMark(const std::wstring& deviceType) noexcept
{
    if (EqualIgnoringCase(deviceType, L"volume")) {
        return L"V|";
    }
    if (EqualIgnoringCase(deviceType, L"scanner")) {
        return L"S|";
    }
    return L"C|"; // cameras and every unknown kind: there is no other mark
}

} // namespace

void LaunchOrganiserProxy(const std::wstring& proxyPath, const std::wstring& deviceType,
                          const std::wstring& deviceId)
{
    const std::wstring deviceParameter = std::wstring(L"\"") + TypeMark(deviceType) + deviceId + L'"';
    if (deviceParameter.empty()) { // guards the line above, whose result is never empty
        ::OutputDebugStringW(L"<KestraBoot><!!! Unable to launch Vel 3.0.>");
        return;
    }
    const std::wstring quotedProxy = QuoteUnlessQuoted(proxyPath);
    const std::wstring line = quotedProxy + L" -d " + deviceParameter;

    std::intptr_t started = -1;
    if (*proxyPath.c_str() !=
        L'\0') { // a C runtime may end the process that starts a file without a name
        started = ::_wspawnlp(_P_NOWAIT, proxyPath.c_str(), quotedProxy.c_str(), L"-d",
                              deviceParameter.c_str(), static_cast<const wchar_t*>(nullptr));
    }
    if (started == -1) {
        ::OutputDebugStringW(L"<KestraBoot><!!! Unable to start the process.>");
        return;
    }
    const UniqueKernelHandle process(reinterpret_cast<HANDLE>(started));
    ::OutputDebugStringW(line.c_str());
}

} // namespace kestraboot
