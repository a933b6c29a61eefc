// kestratrace: shows the debug lines of this session as they come, or those of a recording.
#include "tools/common/build.h"
#include "tools/common/exit_code.h"
#include "tools/trace/live.h"
#include "tools/trace/options.h"
#include "tools/trace/read_back.h"
#include "tools/trace/stop.h"
#include "tools/trace/system_error.h"

#include <windows.h>
#include <cstdio>
#include <exception>

using namespace kestraboot::tools;

int wmain(int count, wchar_t** words);

namespace
{

/// As no-color.org defines it: set, and not empty.
bool ColourIsUnwanted() noexcept
{
    wchar_t first[2] = {};
    return ::GetEnvironmentVariableW(L"NO_COLOR", first, 2) != 0;
}

ExitCode Main(const std::vector<std::wstring>& words)
{
    std::string wrong;
    std::optional<TraceOptions> options = ParseTraceOptions(words, wrong);
    if (!options) {
        std::fprintf(stderr, "kestratrace: %s\n%skestratrace --help says more\n", wrong.c_str(),
                     TraceUsage());
        return ExitCode::Usage;
    }
    if (options->help) {
        std::puts(TraceHelp().c_str());
        return ExitCode::Done;
    }
    if (options->version) {
        std::fputs(VersionAnswer("kestratrace").c_str(), stdout);
        return ExitCode::Done;
    }
    options->colour = options->colour && !ColourIsUnwanted();
    const Stop stop;
    if (!stop.Ready()) {
        TellSystemError("get ready to be stopped");
        return ExitCode::Failed;
    }
    return options->from.empty() ? ShowLive(*options, stop) : ShowRecordings(*options, stop);
}

} // namespace

int wmain(int count, wchar_t** words)
{
    try {
        return static_cast<int>(Main({words + 1, words + count}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestratrace: %s\n", error.what());
        return static_cast<int>(ExitCode::Failed);
    }
}
