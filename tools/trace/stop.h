// Ctrl+C, a closed console, a log-off: what ends kestratrace before its time.
#pragma once

#include "tools/common/handle.h"

namespace kestraboot::tools
{

/// One in a process. While it lives, these set an event and end nothing by themselves. Windows ends the
/// process when the console's handler returns, so that waits for the end of this object, for four
/// seconds at most.
class Stop
{
public:
    Stop();
    Stop(const Stop&) = delete;
    Stop& operator=(const Stop&) = delete;
    ~Stop();

    /// False when it cannot be had; the system's last error says why.
    [[nodiscard]] bool Ready() const noexcept { return ready; }

    [[nodiscard]] HANDLE Event() const noexcept;
    [[nodiscard]] bool Asked() const noexcept;

private:
    bool ready;
};

} // namespace kestraboot::tools
