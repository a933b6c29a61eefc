#pragma once

#include "kestraboot/information_handler.h"

#include <string>
#include <vector>

namespace kestraboot
{

/// The first record whose ProxyPath is `executablePath` in any case, or null. Whole paths are
/// compared: a short (8.3) or otherwise different name of the same file does not match.
[[nodiscard]] const appInfo_tag* FindByProxyPath(const std::vector<appInfo_tag>& applications,
                                                 const std::wstring& executablePath) noexcept;

/// Maintains the order of `handler` (which can end the process), then copies the record of the
/// application whose proxy is the running program. False, with `out` unchanged, if there is none.
/// Throws std::bad_alloc, with `out` unchanged, so that exhausted memory never reads as "none".
[[nodiscard]] bool FindOwnApplication(CKestraBootInformationHandler& handler, appInfo_tag& out);

} // namespace kestraboot
