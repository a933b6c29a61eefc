// Runs one scene again and again, with another failure each time.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// One scene: an operation, and everything around it that it needs to succeed. Created and destroyed
/// around every run, so that the run's leftovers show.
class Act
{
public:
    virtual ~Act() = default;

    /// Restores the state before the operation.
    virtual void Prepare() = 0;

    /// Does it, inside an Armed scope, on a thread that has run nothing before. A std::bad_alloc and the
    /// end of the process may come out.
    virtual void Run() = 0;

    /// Writes the scene's other visible effects into the journal.
    virtual void ShowResults() {}
};

/// A leftover that the product keeps by design.
struct Kept {
    std::string call; ///< the failing call, such as "RegCloseKey 3"; empty: any call, or none
    std::string what; ///< in the journal's words, "windows 2"
    std::string why;
};

struct Scene {
    std::string name;
    std::function<std::unique_ptr<Act>()> make;
    std::wstring folder = {}; ///< in the journal it reads "<files>"

    /// Whether a shortage of memory may leave the operation as std::bad_alloc.
    bool throwsBadAlloc = false;

    /// Whether it waits until it gets its resources, so that memory must come back.
    bool waitsForMemory = false;

    /// Any other leftover is a failure.
    std::vector<Kept> kept = {};

    /// The number of days in which all allocations fail; more than a week for a scene whose run is long.
    int days = 7;
};

/// Fails every call that the operation makes, one in a run, in one of the call's ways of failure; each
/// day another one, or all of them if KESTRABOOT_ALL_FAULTS is set. The calls must be those of the file
/// expected/<scene>.txt, the outcome of each failure must be the one in that file, and nothing may stay
/// behind. If KESTRABOOT_REWRITE_EXPECTED is set, the file is written instead.
void SweepFaults(const Scene& scene);

/// Lets memory run out at each seventh allocation (Scene::days), or at each one if KESTRABOOT_ALL_FAULTS
/// is set: once, and from then on. Nothing may escape or stay behind, and with memory the same object
/// then works as usual. The number of allocations is in the scene's file.
void SweepAllocations(const Scene& scene);

/// Lets two calls of one run fail, in the given number of runs, chosen at random: the second failure
/// comes after the first one, on any path. No run may crash, hang, let an exception out or leave
/// anything behind, and all of them may change nothing for a run after them.
void SweepPairs(const Scene& scene, int pairs);

} // namespace kestraboot::tests
