// The keys by which applications register, as they stand in the registry: also those that the library
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
    bool behindLongName = false; ///< the search of the keys beside it ends before it
    std::optional<std::wstring> name;
    std::optional<std::wstring> proxyPath;
    std::optional<std::wstring> commandPath;
    bool proxyExists = false;
    bool commandExists = false;
    std::optional<std::uint32_t> autoLaunchOfUser;
    std::optional<std::uint32_t> autoLaunchOfMachine;
    bool userHasPreferences = false;         ///< a key of this user's own hides the machine's default
    std::optional<std::uint32_t> sniffDepth; ///< that the library takes; it takes 4 where there is none
};

/// In the order in which the library searches.
[[nodiscard]] std::vector<ApplicationKey> FindApplicationKeys();

/// What 32-bit installers wrote, which 64-bit programs do not see.
[[nodiscard]] std::vector<ApplicationKey> FindApplicationKeysOf32Bit();

} // namespace kestraboot::tools
