#include "tools/trace/recording/progress.h"

#include "tools/trace/lines/system_time.h"

#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <utility>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kPause = 1'000; // milliseconds
constexpr std::uint64_t kMegabyte = 1'048'576;

bool ErrorsAreOnAConsole() noexcept
{
    DWORD mode = 0;
    return ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE;
}

} // namespace

Progress::Progress(std::string fileName, std::uint64_t allBytes)
    : name(std::move(fileName)), all(allBytes), console(ErrorsAreOnAConsole()), toldAt(UpMilliseconds())
{
}

Progress::~Progress()
{
    if (console && shown != 0) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(shown), "");
    }
}

void Progress::Tell(std::uint64_t bytesRead)
{
    const std::int64_t now = UpMilliseconds();
    if (now - toldAt < kPause) {
        return;
    }
    toldAt = now;
    const std::uint64_t whole = std::max(all, bytesRead); // it may grow meanwhile
    const std::string text = "kestratrace: " + name + ": " + std::to_string(bytesRead / kMegabyte) +
                             " of " + std::to_string(whole / kMegabyte) + " MB (" +
                             std::to_string(bytesRead * 100 / whole) + " %)";
    std::fprintf(stderr, "%s%s%s", console ? "\r" : "", text.c_str(), console ? "" : "\n");
    shown = text.size();
}

} // namespace kestraboot::tools
