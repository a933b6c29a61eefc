// Runs one scene again and again, each time with one thing that fails.
#pragma once

#include <functional>
#include <memory>
#include <string>

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

struct Scene {
    std::string name;
    std::function<std::unique_ptr<Act>()> make;
    std::wstring folder = {}; ///< in the journal it reads "<files>"

    /// Whether memory that runs out may come out of the operation as std::bad_alloc.
    bool throwsBadAlloc = false;

    /// Whether it waits until it gets what it needs, so that memory must come back.
    bool waitsForMemory = false;

    /// Whether objects stay in memory on purpose, so that the heap says nothing.
    bool keepsMemory = false;
};

/// Fails every call that the operation makes, one in a run, in every way that the call can fail. What
/// becomes of each is compared with the file expected/<scene>.txt, and nothing may stay behind. Where
/// the environment variable KESTRABOOT_REWRITE_EXPECTED is set, the file is written instead.
void SweepFaults(const Scene& scene);

/// Lets memory run out at every allocation: once, and from then on. Nothing may escape or stay behind,
/// and the same object then does what it does with memory.
void SweepAllocations(const Scene& scene);

} // namespace kestraboot::tests
