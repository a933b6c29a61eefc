#include "registry/supported_formats.h"

#include "foundation/text.h"
#include "registry/application_list.h"

#include <algorithm>

namespace kestraboot
{
namespace
{

void AppendLookedFor(const appInfo_tag& source, std::vector<formatInfo_tag>& out)
{
    for (const formatInfo_tag& format : source.FileFormats) {
        if (!EqualIgnoringCase(format.MediaType, L"Audio")) {
            out.push_back(format);
        }
    }
}

bool IsDefault(const appInfo_tag& application) noexcept
{
    return application.DefaultFlag != 0;
}

} // namespace

void GetSupportedFormats(CKestraBootInformationHandler& handler, std::vector<formatInfo_tag>& out)
{
    const std::vector<appInfo_tag>& applications = ApplicationList::Of(handler);
    const bool onlyDefaults = std::ranges::any_of(applications, IsDefault);
    for (const appInfo_tag& application : applications) {
        if (!onlyDefaults || IsDefault(application)) {
            AppendLookedFor(application, out);
        }
    }
    if (!onlyDefaults) {
        // An organiser that is not installed leaves its record empty and so adds nothing.
        appInfo_tag organiser;
        static_cast<void>(handler.GetVel3Info(organiser));
        AppendLookedFor(organiser, out);
    }
}

} // namespace kestraboot
