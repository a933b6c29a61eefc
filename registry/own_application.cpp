#include "registry/own_application.h"

#include "foundation/process_identity.h"
#include "foundation/text.h"
#include "registry/application_list.h"

#include <algorithm>
#include <utility>

namespace kestraboot
{

const appInfo_tag* FindByProxyPath(const std::vector<appInfo_tag>& applications,
                                   const std::wstring& executablePath) noexcept
{
    const auto found = std::ranges::find_if(applications, [&](const appInfo_tag& application) {
        return EqualIgnoringCase(application.ProxyPath, executablePath);
    });
    return found != applications.end() ? &*found : nullptr;
}

bool FindOwnApplication(CKestraBootInformationHandler& handler, appInfo_tag& out)
{
    handler.MaintainOrder();
    ProcessInfo self;
    GetCurrentProcessInfo(self);
    const appInfo_tag* const own = FindByProxyPath(ApplicationList::Of(handler), self.executablePath);
    if (own == nullptr) {
        return false;
    }
    appInfo_tag copy = *own;
    out = std::move(copy);
    return true;
}

} // namespace kestraboot
