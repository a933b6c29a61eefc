#pragma once

#include "tools/common/handle.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// A file that is read from its beginning to its end, a piece at a time; others may write it meanwhile.
class RecordingFile
{
public:
    explicit RecordingFile(const std::wstring& path);

    /// The system's last error says why not.
    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file); }

    /// Empty at the end; nothing when it cannot be read. Good until the next call.
    [[nodiscard]] std::optional<std::string_view> Read();

    [[nodiscard]] std::uint64_t Size() const noexcept;
    [[nodiscard]] std::uint64_t Position() const noexcept { return position; }

    /// The local day, since 1970, on which it was written last.
    [[nodiscard]] std::int64_t LastDay() const noexcept;

private:
    Handle file;
    std::uint64_t position = 0;
    std::vector<char> piece;
};

} // namespace kestraboot::tools
