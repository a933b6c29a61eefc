#pragma once

#include <string>

namespace kestraboot
{

/// Passes one device to the organiser's proxy, with the command line
///   "<proxyPath>" -d "<V|, S| or C|><deviceId>"
/// A kind other than "volume" and "scanner", in any letter case, is sent as a camera.
void LaunchOrganiserProxy(const std::wstring& proxyPath, const std::wstring& deviceType,
                          const std::wstring& deviceId);

} // namespace kestraboot
