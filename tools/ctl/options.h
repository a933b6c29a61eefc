// The command line of kestractl.
#pragma once

#include <string>
#include <vector>

namespace kestraboot::tools
{

struct CtlOptions {
    bool check = false;
    bool json = false;
    bool noColour = false;
    bool help = false;
    bool version = false;
    std::string notUnderstood; ///< the first word that is not understood; empty if all are
};

/// `words` is UTF-8, without the program's name.
[[nodiscard]] CtlOptions ReadCtlOptions(std::vector<std::string> words);

[[nodiscard]] const char* CtlUsage();

} // namespace kestraboot::tools
