// Runs one scene again and again, each time with one thing that fails.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// One scene: an operation, and everything around it that it needs to succeed. Made and destroyed around
/// every run, so that what the run leaves behind shows.
class Act
{
public:
    virtual ~Act() = default;

    /// Puts everything as it is before the operation.
    virtual void Prepare() = 0;

    /// Does it, inside an Armed scope, on a thread that has run nothing before. A std::bad_alloc and the
    /// end of the process may come out.
    virtual void Run() = 0;

    /// Writes into the journal what else is to be seen of it.
    virtual void ShowResults() {}
};

/// Something that a run leaves behind on purpose.
struct Kept {
    std::string call; ///< that failed, such as "RegCloseKey 3"; empty: whichever does, or none
    std::string what; ///< as the journal says it, "windows 2"
    std::string why;
};

struct Scene {
    std::string name;
    std::function<std::unique_ptr<Act>()> make;
    std::wstring folder = {}; ///< in the journal it reads "<files>"

    /// Whether memory that runs out may come out of the operation as std::bad_alloc.
    bool throwsBadAlloc = false;

    /// Whether it waits until it gets what it needs, so that memory must come back.
    bool waitsForMemory = false;

    /// All else that stays is a failure.
    std::vector<Kept> kept = {};
};

/// Fails every call that the operation makes, one in a run, in one of the ways in which the call can
/// fail; each day another one, or all of them where KESTRABOOT_ALL_FAULTS is set. The calls must be
/// those of the file expected/<scene>.txt, what becomes of each failure must be what stands there, and
/// nothing may stay behind. Where KESTRABOOT_REWRITE_EXPECTED is set, the file is written instead.
void SweepFaults(const Scene& scene);

/// Lets memory run out at each seventh allocation, or each one where KESTRABOOT_ALL_FAULTS is set: once,
/// and from then on. Nothing may escape or stay behind, and the same object then does what it does with
/// memory. The number of allocations stands in the scene's file.
void SweepAllocations(const Scene& scene);

/// Lets two calls of one run fail, so many times, chosen at random: the second one comes after the first
/// failure, wherever that led. No run may crash, hang, let an exception out or leave anything behind,
/// and all of them may change nothing for a run after them.
void SweepPairs(const Scene& scene, int pairs);

} // namespace kestraboot::tests
