// The registered applications' keys, as they are in the registry, including those that the library
// leaves out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

struct ApplicationKey {
    std::wstring path; ///< below HKEY_LOCAL_MACHINE
    bool nameInOtherCase = false;
    bool belowAnother = false;   ///< below another application's key
    bool behindLongName = false; ///< a name ends the library's search of its parent before it
    std::optional<std::wstring> name;
    std::optional<std::wstring> proxyPath;
    std::optional<std::wstring> commandPath;
    bool proxyExists = false;
    bool commandExists = false;
    std::optional<std::uint32_t> autoLaunchOfUser;
    std::optional<std::uint32_t> autoLaunchOfMachine;
    bool userHasPreferences = false;         ///< a key of this user hides the machine's default
    std::optional<std::uint32_t> sniffDepth; ///< that the library uses; 4 if there is none
};

/// In the order in which the library searches.
[[nodiscard]] std::vector<ApplicationKey> FindApplicationKeys();

/// The keys that 32-bit installers wrote; 64-bit programs do not see them.
[[nodiscard]] std::vector<ApplicationKey> FindApplicationKeysOf32Bit();

} // namespace kestraboot::tools
