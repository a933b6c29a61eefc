#pragma once

#include <string>

namespace kestraboot::tests
{

/// What a process has of the things that an operation must give back or put back.
struct Belongings {
    int handles = 0; ///< of every kind
    int threads = 0; ///< that run
    int modules = 0; ///< loaded libraries
    long blocks = 0; ///< of the C++ heap
    long memory = 0; ///< that the module under test took from the system itself
    unsigned errorMode = 0;
    wchar_t folder[260] = {}; ///< the current directory
};

/// Before a run the handles are those that were counted last; after one they are looked for again.
[[nodiscard]] Belongings LookAround(bool afterRun);

/// What `after` has more, or otherwise, than `before`, a line for each, such as "LEFT BEHIND handles 1";
/// empty when nothing. Puts the mode and the directory back.
[[nodiscard]] std::string LeftBehind(const Belongings& before, const Belongings& after);

/// How a line of the journal begins that says what stayed.
inline constexpr const char* kLeftBehind = "LEFT BEHIND ";

} // namespace kestraboot::tests
