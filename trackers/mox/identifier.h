#pragma once

#include "kestraboot/mox_plugin.h"

#include <cstring>

namespace kestraboot
{

[[nodiscard]] inline bool SameIdentifier(const mox::Identifier& left,
                                         const mox::Identifier& right) noexcept
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

} // namespace kestraboot
