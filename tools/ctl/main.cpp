// kestractl: shows the library's view, and why nothing happens. Changes nothing on the machine.
#include "tools/common/build.h"
#include "tools/common/exit_code.h"
#include "tools/common/standard_output.h"
#include "tools/common/utf8.h"
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/check_format.h"
#include "tools/ctl/gather.h"
#include "tools/ctl/look/look.h"
#include "tools/ctl/options.h"
#include "tools/ctl/report_format.h"
#include "tools/ctl/unread.h"

#include <cstdio>
#include <exception>
#include <utility>

using namespace kestraboot::tools;

int wmain(int count, wchar_t** words);

namespace
{

struct Shown {
    StyledText text;
    ExitCode code = ExitCode::Done;
};

Shown MakeCheck(bool json)
{
    const Rows rows = Check(Look());
    return {json ? StyledText{{Style::Plain, CheckJson(rows) + '\n'}} : FormatCheck(rows),
            Count(rows, Verdict::Broken) > 0 ? ExitCode::Broken : ExitCode::Done};
}

Shown MakeReport(bool json)
{
    const Report report = Gather();
    return {json ? StyledText{{Style::Plain, ReportJson(report) + '\n'}} : FormatReport(report)};
}

bool WantsNoColour(const CtlOptions& options)
{
    return options.noColour || ::GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) > 1; // not empty
}

ExitCode Show(const CtlOptions& options)
{
    static_cast<void>(TakeUnread());
    ::SetConsoleCtrlHandler(nullptr, TRUE); // Ctrl+C must not leave the copy of the keys behind
    const Shown shown = options.check ? MakeCheck(options.json) : MakeReport(options.json);
    const StandardOutput output(!WantsNoColour(options));
    if (!output.Write(shown.text)) {
        std::fputs("kestractl: standard output cannot be written\n", stderr);
        return ExitCode::Failed;
    }
    return TakeUnread() ? ExitCode::Failed : shown.code;
}

ExitCode Main(int count, wchar_t** words)
{
    std::vector<std::string> narrow;
    for (int i = 1; i < count; ++i) {
        narrow.push_back(ToUtf8(words[i]));
    }
    const CtlOptions options = ReadCtlOptions(std::move(narrow));
    if (!options.notUnderstood.empty()) {
        std::fprintf(stderr, "kestractl: not understood: %s\n%s", options.notUnderstood.c_str(),
                     CtlUsage());
        return ExitCode::Usage;
    }
    if (options.help) {
        std::fputs(CtlUsage(), stdout);
        return ExitCode::Done;
    }
    if (options.version) {
        std::fputs(VersionAnswer("kestractl").c_str(), stdout);
        return ExitCode::Done;
    }
    return Show(options);
}

} // namespace

int wmain(int count, wchar_t** words)
{
    try {
        return static_cast<int>(Main(count, words));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestractl: %s\n", error.what());
        return static_cast<int>(ExitCode::Failed);
    }
}
