// The file that is written on request.
#pragma once

#include "tools/common/handle.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// Written at its end; others may read and rename it meanwhile. One that is not there any more
/// under its name is made anew.
///
/// With a longest length it is rotated: before it would exceed that, it becomes PATH.1, what was PATH.1
/// becomes PATH.2, and so on to the last that is kept. Where that cannot be done, since somebody holds
/// one of them open, it grows on and is tried again later. No line is cut or lost by it.
class LogFile
{
public:
    struct Rotation {
        std::uint64_t longest = 0; ///< bytes; 0: for ever
        unsigned keep = 0;         ///< earlier files
    };

    /// False when it cannot be opened; the system's last error says why.
    [[nodiscard]] bool Open(const std::wstring& path, Rotation rotation);

    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file); }

    /// What each file begins with that is made anew from now on.
    void SetHeading(std::string text) { heading = std::move(text); }

    /// Whole lines; nothing happens where no file is open. A failure is said once on standard error, and
    /// again after a success: a disk may be full for a while.
    void Write(std::string_view lines);

    /// Whether a line could not be written.
    [[nodiscard]] bool Failed() const noexcept { return failedEver; }

private:
    [[nodiscard]] bool OpenAtEnd();
    void FollowName();
    void Rotate();
    void BeginAnew();
    [[nodiscard]] std::size_t FittingPart(std::string_view lines) const;

    std::wstring name;
    Rotation limits;
    std::string heading;
    Handle file;
    std::uint64_t length = 0;
    std::uint64_t longestNow = 0; ///< grows where the file could not be rotated
    bool failing = false;
    bool failedEver = false;
};

} // namespace kestraboot::tools
