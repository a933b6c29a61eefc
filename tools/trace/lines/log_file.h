// The file of --file.
#pragma once

#include "tools/common/handle.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// Lines are appended; other programs may read and rename the file meanwhile. If the name no longer
/// exists, the file is created again.
///
/// A file with a largest size is rotated: before it would exceed that size, it becomes PATH.1, the
/// previous PATH.1 becomes PATH.2, and so on up to the last that is kept. If that fails, because
/// another program holds one of them open, the file grows and rotation is tried again later. No
/// line is cut or lost by it.
class LogFile
{
public:
    struct Rotation {
        std::uint64_t longest = 0; ///< bytes; 0: unlimited
        unsigned keep = 0;         ///< the number of earlier files
    };

    /// False if it cannot be opened; the system's last error is the reason.
    [[nodiscard]] bool Open(const std::wstring& path, Rotation rotation);

    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file); }

    /// The text with which each new file begins from now on.
    void SetHeading(std::string text) { heading = std::move(text); }

    /// Writes whole lines; does nothing if no file is open. Reports a failure once on standard
    /// error, and again after a success, because a disk may be full for a time.
    void Write(std::string_view lines);

    /// Whether a line could not be written.
    [[nodiscard]] bool Failed() const noexcept { return failedEver; }

private:
    [[nodiscard]] bool OpenAtEnd();
    void Append(std::string_view bytes);
    void FollowName();
    void Rotate();
    void BeginAnew();
    [[nodiscard]] std::size_t FittingPart(std::string_view lines) const;

    std::wstring name;
    Rotation limits;
    std::string heading;
    Handle file;
    std::uint64_t length = 0;
    std::uint64_t longestNow = 0; ///< grows if the file could not be rotated
    bool inOldFile = false;       ///< because there could be no new one, as standard error said
    bool failing = false;
    bool failedEver = false;
};

} // namespace kestraboot::tools
