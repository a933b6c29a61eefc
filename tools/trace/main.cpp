// kestratrace: the live viewer of the debug lines of this session.
#include "tools/common/exit_code.h"
#include "tools/common/utf8.h"
#include "tools/trace/channel/debug_channel.h"
#include "tools/trace/channel/line_queue.h"
#include "tools/trace/channel/line_reader.h"
#include "tools/trace/lines/system_time.h"
#include "tools/trace/options.h"
#include "tools/trace/viewer.h"

#include <windows.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>

using namespace kestraboot::tools;

int wmain(int count, wchar_t** words);

namespace
{

constexpr std::size_t kMostQueued = 8'192; // lines
constexpr std::chrono::milliseconds kLook = std::chrono::milliseconds(250);
constexpr DWORD kLongestEnd = 4000; // milliseconds; Windows ends the process after five seconds

// For the console's control handler, which runs on a thread of its own. Closed with the process.
HANDLE stopAsked = nullptr;
HANDLE ended = nullptr;

BOOL WINAPI OnControl(DWORD event) noexcept
{
    ::SetEvent(stopAsked);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        ::WaitForSingleObject(ended, kLongestEnd); // the process ends when this returns
    }
    return TRUE;
}

ExitCode Fail(const std::string& what)
{
    std::fprintf(stderr, "kestratrace: cannot %s (error %lu)\n", what.c_str(), ::GetLastError());
    return ExitCode::Failed;
}

/// Until no more lines come: the reader stops when it is told to, or by itself.
ExitCode ShowLines(LineQueue& queue, Viewer& viewer, std::uint64_t seconds)
{
    const std::int64_t end = UpMilliseconds() + static_cast<std::int64_t>(seconds) * 1000;
    while (!queue.Finished()) {
        auto longest = kLook;
        if (seconds != 0) {
            const std::int64_t left = end - UpMilliseconds();
            if (left <= 0) {
                ::SetEvent(stopAsked);
            }
            longest = std::clamp(std::chrono::milliseconds(left), std::chrono::milliseconds(0), kLook);
        }
        if (const std::optional<SeenLine> line = queue.Pop(longest)) {
            viewer.Take(*line);
        }
        if (const std::uint64_t lost = queue.TakeLost()) {
            viewer.TakeLost(Now(), lost);
        }
        viewer.Tick(UpMilliseconds());
        if (!viewer.Useful()) {
            return ExitCode::Failed;
        }
    }
    viewer.End();
    return viewer.Failed() ? ExitCode::Failed : ExitCode::Done;
}

ExitCode Run(const TraceOptions& options)
{
    DebugChannel channel;
    switch (channel.Open()) {
    case DebugChannel::Opening::HeldByAnother:
        std::fputs("kestratrace: another program already reads the debug output of this session; "
                   "there can be one at a time: end it first\n",
                   stderr);
        return ExitCode::AnotherViewer;
    case DebugChannel::Opening::Failed:
        return Fail("make the debug output section");
    default:
        break;
    }
    LogFile file;
    if (!options.file.empty() && !file.Open(options.file)) {
        return Fail("open " + ToUtf8(options.file));
    }
    stopAsked = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ended = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (stopAsked == nullptr || ended == nullptr || !::SetConsoleCtrlHandler(OnControl, TRUE)) {
        return Fail("get ready to be stopped");
    }
    LineQueue queue(kMostQueued);
    Viewer viewer(options, std::move(file));
    const LineReader reader(channel, queue, stopAsked);
    const ExitCode shown = ShowLines(queue, viewer, options.seconds);
    if (reader.Failed()) {
        std::fputs("kestratrace: the debug output cannot be read any more\n", stderr);
        return ExitCode::Failed;
    }
    return shown;
}

ExitCode Main(const std::vector<std::wstring>& words)
{
    std::string wrong;
    const std::optional<TraceOptions> options = ParseTraceOptions(words, wrong);
    if (!options) {
        std::fprintf(stderr, "kestratrace: %s\n%s", wrong.c_str(), TraceUsage());
        return ExitCode::Usage;
    }
    if (options->help) {
        std::fputs(TraceUsage(), stdout);
        return ExitCode::Done;
    }
    return Run(*options);
}

} // namespace

int wmain(int count, wchar_t** words)
{
    ExitCode code = ExitCode::Failed;
    try {
        code = Main({words + 1, words + count});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestratrace: %s\n", error.what());
    }
    if (ended != nullptr) {
        ::SetEvent(ended);
    }
    return static_cast<int>(code);
}
