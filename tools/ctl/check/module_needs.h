// The libraries that a plugin needs and that cannot be found.
#pragma once

#include "tools/ctl/check/pe_image.h"

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

/// A library, as the search finds it.
struct FoundModule {
    bool ofWindows = false; ///< its own needs are not checked
    PeReading file;
};

/// Nothing if the search finds none.
using FindModule = std::function<std::optional<FoundModule>(const std::string& name)>;

struct MissingModule {
    std::string name;
    std::string neededBy; ///< the library that needs it; empty: the plugin itself
    std::wstring why;
};

/// Includes the needs of the libraries that are found beside the boot program; names each library
/// once.
[[nodiscard]] std::vector<MissingModule> MissingModules(const PeImage& plugin, const FindModule& find);

} // namespace kestraboot::tools
