// The command line by which a compatible application is started for a device.
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The boot executable's request. Without a device, deviceType and deviceId are empty.
struct LaunchRequest {
    std::wstring
        mode; ///< "direct": show this device; "select": let the user choose an application first
    std::wstring deviceType; ///< "volume", "camera", "scanner", ...
    std::wstring deviceId;   ///< for a volume its drive, "E:"
};

/// Reads a whole command line, as GetCommandLineW gives it:
///   "<program>" module=kestrafetch params mode=<mode> [devType=<kind> priDevId="<identifier>"]
/// The identifier is not escaped and may hold blanks, quotes and backslashes: it is the whole text
/// between the first quote and the last. Splitting into arguments first would damage it. Nothing if the
/// line is no request of this kind.
std::optional<LaunchRequest> ParseLaunchRequest(std::wstring_view commandLine);
