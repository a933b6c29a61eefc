#pragma once

#include <cstdint>
#include <string>

namespace kestraboot::tools
{

/// The progress of a long recording, on standard error: after a second, and then each second. On a
/// console it is one line, removed at the end; elsewhere it is a new line each time.
class Progress
{
public:
    Progress(std::string fileName, std::uint64_t allBytes);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Tell(std::uint64_t bytesRead);

private:
    const std::string name;
    const std::uint64_t all;
    const bool console;
    std::int64_t toldAt; ///< upMilliseconds
    std::size_t shown = 0;
};

} // namespace kestraboot::tools
