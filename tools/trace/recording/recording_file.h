#pragma once

#include "tools/common/handle.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// Reads a file from its beginning to its end, in pieces; other programs may write it meanwhile.
class RecordingFile
{
public:
    explicit RecordingFile(const std::wstring& path);

    /// On failure the system's last error is the reason.
    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file); }

    /// Empty at the end; nothing if it cannot be read. Valid until the next call.
    [[nodiscard]] std::optional<std::string_view> Read();

    [[nodiscard]] std::uint64_t Size() const noexcept;
    [[nodiscard]] std::uint64_t Position() const noexcept { return position; }

    /// The local day, since 1970, of its last change; nothing if it cannot be read.
    [[nodiscard]] std::optional<std::int64_t> LastDay() const noexcept;

private:
    Handle file;
    std::uint64_t position = 0;
    std::vector<char> piece;
};

} // namespace kestraboot::tools
