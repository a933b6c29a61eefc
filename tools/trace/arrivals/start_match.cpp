#include "tools/trace/arrivals/start_match.h"

#include <algorithm>

namespace kestraboot::tools
{

namespace
{

bool FitsKind(const StartLine& start, const std::string& kind)
{
    if (start.kindGuessed) {
        return kind != "volume" && kind != "scanner";
    }
    return start.kind == kind || start.kind.empty();
}

char Lower(char character) noexcept
{
    const bool upper = character >= 'A' && character <= 'Z';
    return upper ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool Names(const StartLine& start, const Arrival& arrival)
{
    const bool sameDevice =
        arrival.deviceCut ? start.device.starts_with(arrival.device) : start.device == arrival.device;
    return FitsKind(start, arrival.kind) && sameDevice;
}

bool MayBeOfTheStarted(const StartLine& start, std::string_view writer)
{
    const std::string_view application = start.application;
    const std::string_view file =
        application.substr(application.find_last_of("\\/") + 1); // npos + 1 is 0
    return writer == "?" || std::ranges::equal(file, writer, {}, Lower, Lower);
}

} // namespace kestraboot::tools
