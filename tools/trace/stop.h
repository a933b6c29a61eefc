// The events that stop kestratrace early: Ctrl+C, a closed console, a log-off.
#pragma once

#include "tools/common/handle.h"

namespace kestraboot::tools
{

/// One in a process. While it lives, these events set an event and do not end the process. Windows
/// ends the process when the console's handler returns, so the handler waits for the end of this
/// object, for 4 s at most.
class Stop
{
public:
    Stop();
    Stop(const Stop&) = delete;
    Stop& operator=(const Stop&) = delete;
    ~Stop();

    /// False if it is not available; the system's last error is the reason.
    [[nodiscard]] bool Ready() const noexcept { return ready; }

    [[nodiscard]] HANDLE Event() const noexcept;
    [[nodiscard]] bool Asked() const noexcept;

private:
    bool ready;
};

} // namespace kestraboot::tools
