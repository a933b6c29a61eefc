#include "registry/own_application.h"

#include "foundation/process_identity.h"
#include "foundation/text.h"

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
    std::vector<appInfo_tag> all;
    if (!handler.GetAllApplicationInfo(all)) {
        return false;
    }
    const appInfo_tag* const own = FindByProxyPath(all, self.executablePath);
    if (own == nullptr) {
        return false;
    }
    out = std::move(all[static_cast<std::size_t>(own - all.data())]);
    return true;
}

} // namespace kestraboot
