#include "foundation/process_identity.h"
#include "kestraboot/information_handler.h"
#include "registry/own_application.h"
#include "registry/run_value.h"

using namespace kestraboot;

void CKestraBootInformationHandler::MaintainOrder()
{
    LoadInformation();
    if (applications.empty()) {
        ::OutputDebugStringW(L"<KestraBoot><!!! No Kestra Compatible application found. This situation "
                             L"should be avoided.>");
        StartVel3AutoLaunch();
        static_cast<void>(DeleteRunValue());
        ::OutputDebugStringW(
            L"<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>");
        // Nothing is left to serve: no boot executable runs without a compatible application.
        ::ExitProcess(0);
    }
    ProcessInfo self;
    GetCurrentProcessInfo(self);
    const appInfo_tag* const own = FindByProxyPath(applications, self.executablePath);
    // If the registry cannot be written, the entry is unchanged.
    static_cast<void>(SetRunValue(own != nullptr ? own->ProxyPath : applications.front().ProxyPath));
}
