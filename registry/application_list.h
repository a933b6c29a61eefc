#pragma once

#include "kestraboot/information_handler.h"

#include <vector>

namespace kestraboot
{

/// A handler's own list, for the library's own operations. They use it instead of a copy from the
/// exported queries: those return false if memory runs out, which would read like an empty list.
class ApplicationList : private CKestraBootInformationHandler
{
public:
    [[nodiscard]] static const std::vector<appInfo_tag>&
    Of(const CKestraBootInformationHandler& handler) noexcept
    {
        return handler.*&ApplicationList::applications;
    }
};

} // namespace kestraboot
