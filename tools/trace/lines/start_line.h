// The command line of a started program, which the launcher writes verbatim:
//
//   "C:\Viewer\viewer.exe" module=kestrafetch params mode=direct devType=volume priDevId="E:"
//   "C:\Viewer\viewer.exe" module=kestrafetch params mode=direct           (no device identifier)
//   "C:\Vellumry\VelProxy.exe" -d "V|E:"                                   (the legacy organiser's)
//
// Nothing in it is escaped: identifiers may contain blanks and quotes, so it is split at the fixed
// words.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestraboot::tools
{

struct StartLine {
    std::string application; ///< without quotes
    std::string mode;        ///< empty for the legacy organiser
    std::string kind;        ///< "volume", "camera", ...; empty if there is none
    bool kindGuessed =
        false; ///< for the legacy organiser every device except for volumes and scanners is a camera
    std::string device; ///< as in the line, without the quotes around it; may be empty
};

[[nodiscard]] std::optional<StartLine> ParseStartLine(std::string_view text);

} // namespace kestraboot::tools
