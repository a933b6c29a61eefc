// The hand-over if the running proxy's application is removed.
#include "foundation/handles.h"
#include "foundation/process_identity.h"
#include "foundation/text.h"
#include "foundation/trace.h"
#include "kestraboot/information_handler.h"
#include "registry/other_instances.h"
#include "registry/run_value.h"

#include <cstdint>
#include <process.h>
#include <shlwapi.h>

using namespace kestraboot;

namespace
{

void StartProxy(const appInfo_tag& application)
{
    const std::wstring argument = QuoteUnlessQuoted(application.ProxyPath);
    const std::intptr_t started = ::_wspawnlp(_P_NOWAIT, application.ProxyPath.c_str(), argument.c_str(),
                                              static_cast<const wchar_t*>(nullptr));
    // Whether it started is not checked; its handle is closed at once.
    const UniqueKernelHandle process(started != -1 ? reinterpret_cast<HANDLE>(started) : nullptr);

    TraceBuffer line = {};
    FormatTraceLine(line, L"<KestraBoot><Switching application to ...<%ls><%ls> >",
                    application.Name.c_str(), application.ProxyPath.c_str());
    ::OutputDebugStringW(line);
}

} // namespace

void CKestraBootInformationHandler::Uninstall()
{
    constexpr DWORD kMillisecondsToBeGone = 2000;

    ProcessInfo self;
    GetCurrentProcessInfo(self);
    if (!StopOtherInstances(self.processId, self.executablePath)) {
        return; // no other instance was in control, so there is nothing to hand over
    }
    ::Sleep(kMillisecondsToBeGone);
    MaintainOrder();

    for (const appInfo_tag& application : applications) {
        if (!EqualIgnoringCase(application.ProxyPath, self.executablePath) &&
            ::PathFileExistsW(application.ProxyPath.c_str())) {
            StartProxy(application);
            return;
        }
    }
    StartVel3AutoLaunch();
    static_cast<void>(DeleteRunValue());
    ::OutputDebugStringW(
        L"<KESTRABOOT><Deleting run key. Auto run is going to discontinue from now onwards.>");
}
