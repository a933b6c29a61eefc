#pragma once

#include "kestraboot/information_handler.h"

#include <string>
#include <vector>

namespace kestraboot
{

/// The first record whose ProxyPath is `executablePath` without regard to case, or null. Whole paths as
/// they stand: a short (8.3) or otherwise different name of the same file does not match.
[[nodiscard]] const appInfo_tag* FindByProxyPath(const std::vector<appInfo_tag>& applications,
                                                 const std::wstring& executablePath) noexcept;

/// Maintains the order of `handler` (which can end the process), then copies the record of the
/// application whose proxy is the running program. False, and `out` untouched, when there is none.
/// Throws std::bad_alloc, and `out` is untouched then: that memory ran out never reads as "none".
[[nodiscard]] bool FindOwnApplication(CKestraBootInformationHandler& handler, appInfo_tag& out);

} // namespace kestraboot
