// The names of the processes that write lines.
#pragma once

#include "tools/common/handle.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>

namespace kestraboot::tools
{

/// Remembers the processes that wrote last. It keeps each of them open, so that Windows gives its
/// number to no other process.
class ProcessNames
{
public:
    static constexpr std::size_t kMost = 64;

    /// The name of its file, UTF-8; "?" for a process that cannot be queried.
    [[nodiscard]] const std::string& Of(std::uint32_t processId);

private:
    struct Known {
        std::uint32_t id;
        Handle process;
        std::string name;
    };
    std::list<Known> known; ///< the process that wrote last at the front
    std::string unknown = "?";
};

} // namespace kestraboot::tools
