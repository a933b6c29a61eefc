// The file that is written on request.
#pragma once

#include "tools/common/handle.h"

#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// Written at its end, each line at once; others may read it meanwhile.
class LogFile
{
public:
    /// False when it cannot be opened; the system's last error says why.
    [[nodiscard]] bool Open(const std::wstring& path);

    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file); }

    /// Nothing happens where none is open. A failure is said once on standard error, and again after a
    /// success: a disk may be full for a while.
    void Write(std::string_view line);

    /// Whether a line could not be written.
    [[nodiscard]] bool Failed() const noexcept { return failedEver; }

private:
    Handle file;
    bool failing = false;
    bool failedEver = false;
};

} // namespace kestraboot::tools
