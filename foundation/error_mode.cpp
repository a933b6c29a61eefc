#include "foundation/error_mode.h"

namespace kestraboot
{
namespace
{

/// The scopes of the whole process, counted for each flag. They are numbers, not a list of scopes:
/// if the end of the process takes a thread away, nothing here points into its stack.
class ActiveModes
{
public:
    void Add(UINT mode) noexcept
    {
        const Turn turn(lock);
        Count(mode, 1);
        const UINT replaced = ::SetErrorMode(Together());
        if (scopes == 1) {
            before = replaced;
        }
    }

    void Remove(UINT mode) noexcept
    {
        const Turn turn(lock);
        Count(mode, -1);
        ::SetErrorMode(scopes == 0 ? before : Together());
    }

private:
    static constexpr unsigned kFlags = 16; // winbase.h: the highest is SEM_NOOPENFILEERRORBOX, 0x8000

    /// Held during SetErrorMode alone.
    class Turn
    {
    public:
        explicit Turn(SRWLOCK& taken) noexcept : lock(taken) { ::AcquireSRWLockExclusive(&lock); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() { ::ReleaseSRWLockExclusive(&lock); }

    private:
        SRWLOCK& lock;
    };

    void Count(UINT mode, int change) noexcept
    {
        scopes += change;
        for (unsigned flag = 0; flag < kFlags; ++flag) {
            if ((mode >> flag & 1U) != 0) {
                scopesOf[flag] += change;
            }
        }
    }

    UINT Together() const noexcept
    {
        UINT mode = 0;
        for (unsigned flag = 0; flag < kFlags; ++flag) {
            if (scopesOf[flag] != 0) {
                mode |= 1U << flag;
            }
        }
        return mode;
    }

    SRWLOCK lock = SRWLOCK_INIT;
    int scopes = 0;
    int scopesOf[kFlags] = {};
    UINT before = 0;
};

// Initialised before any constructor runs, because the drives are scanned while the library loads.
constinit ActiveModes active;

} // namespace

ErrorModeScope::ErrorModeScope(UINT wanted) noexcept : mode(wanted)
{
    active.Add(mode);
}

ErrorModeScope::~ErrorModeScope()
{
    active.Remove(mode);
}

} // namespace kestraboot
