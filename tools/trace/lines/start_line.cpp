#include "tools/trace/lines/start_line.h"

namespace kestraboot::tools
{
namespace
{

constexpr std::string_view kModule = "\" module=kestrafetch params mode=";
constexpr std::string_view kKind = " devType=";
constexpr std::string_view kDevice = " priDevId=";
constexpr std::string_view kOrganiserDevice = "\" -d \"";

std::string WithoutQuotes(std::string_view text)
{
    if (text.starts_with('"')) {
        text.remove_prefix(1);
    }
    if (text.ends_with('"')) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

std::optional<StartLine> ParseOrganiserLine(std::string_view text)
{
    const std::size_t device = text.find(kOrganiserDevice);
    if (device == std::string_view::npos || !text.ends_with('"')) {
        return std::nullopt;
    }
    const std::string_view tagged = text.substr(device + kOrganiserDevice.size());
    StartLine line;
    line.application = WithoutQuotes(text.substr(0, device + 1));
    if (tagged.starts_with("V|")) {
        line.kind = "volume";
    } else if (tagged.starts_with("S|")) {
        line.kind = "scanner";
    } else if (tagged.starts_with("C|")) {
        line.kind = "camera";
        line.kindGuessed = true;
    } else {
        return std::nullopt;
    }
    line.device = tagged.substr(2, tagged.size() - 3);
    return line;
}

} // namespace

std::optional<StartLine> ParseStartLine(std::string_view text)
{
    if (!text.starts_with('"')) {
        return std::nullopt;
    }
    const std::size_t module = text.find(kModule);
    if (module == std::string_view::npos) {
        return ParseOrganiserLine(text);
    }
    StartLine line;
    line.application = WithoutQuotes(text.substr(0, module + 1));
    std::string_view rest = text.substr(module + kModule.size());
    const std::size_t kind = rest.find(kKind);
    line.mode = rest.substr(0, kind);
    if (kind != std::string_view::npos) {
        rest.remove_prefix(kind + kKind.size());
        const std::size_t device = rest.find(kDevice);
        line.kind = rest.substr(0, device);
        if (device != std::string_view::npos) {
            line.device = WithoutQuotes(rest.substr(device + kDevice.size()));
        }
    }
    return line;
}

} // namespace kestraboot::tools
