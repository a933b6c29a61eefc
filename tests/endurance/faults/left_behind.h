#pragma once

#include <string>

namespace kestraboot::tests
{

/// The state of a process that an operation must give back or restore.
struct Belongings {
    int handles = 0; ///< of every kind
    int threads = 0; ///< that run
    int modules = 0; ///< loaded libraries
    long blocks = 0; ///< of the C++ heap
    long memory = 0; ///< that the module under test took from the system itself
    unsigned errorMode = 0;
    wchar_t folder[260] = {}; ///< the current directory
};

/// Before a run the handles are those of the last count; after one they are counted again.
[[nodiscard]] Belongings LookAround(bool afterRun);

/// The surplus or other difference of `after`, a line for each, such as "LEFT BEHIND handles 1"; empty
/// if there is none. Restores the mode and the directory.
[[nodiscard]] std::string LeftBehind(const Belongings& before, const Belongings& after);

/// The beginning of a journal line that names a leftover.
inline constexpr const char* kLeftBehind = "LEFT BEHIND ";

} // namespace kestraboot::tests
