#include "registry/supported_formats.h"

#include "foundation/text.h"

#include <utility>

namespace kestraboot
{

void GetSupportedFormats(CKestraBootInformationHandler& handler, std::vector<formatInfo_tag>& out)
{
    std::vector<appInfo_tag> sources;
    // The number of records decides, not whether the query could copy all of them.
    static_cast<void>(handler.GetDefaultApplicationInfo(sources));
    if (sources.empty()) {
        static_cast<void>(handler.GetAllApplicationInfo(sources));
        // An organiser that is not installed leaves its record empty, and so adds nothing.
        static_cast<void>(handler.GetVel3Info(sources.emplace_back()));
    }
    for (const appInfo_tag& source : sources) {
        for (const formatInfo_tag& format : source.FileFormats) {
            if (!EqualIgnoringCase(format.MediaType, L"Audio")) {
                out.push_back(format);
            }
        }
    }
}

} // namespace kestraboot
