// kestractl: shows what the library sees, and changes nothing on the machine.
#include "tools/common/exit_code.h"
#include "tools/common/standard_output.h"
#include "tools/common/utf8.h"
#include "tools/ctl/gather.h"
#include "tools/ctl/report_format.h"

#include <cstdio>
#include <exception>
#include <string_view>

using namespace kestraboot::tools;

int wmain(int count, wchar_t** words);

namespace
{

constexpr const char* kUsage =
    "usage: kestractl [--json] [--no-color]\n"
    "\n"
    "Shows the compatible applications as the library sees them, which are left out and why, the\n"
    "auto-run entry, and the legacy organiser. Changes nothing.\n"
    "\n"
    "  --json      one JSON object on one line\n"
    "  --no-color  one colour on a console\n"
    "\n"
    "exit codes: 0 shown, 1 failed, 2 usage\n";

ExitCode Show(bool json, bool colour)
{
    ::SetConsoleCtrlHandler(nullptr, TRUE); // it takes a moment, and then removes the copy of the keys
    const Report report = Gather();
    const StandardOutput output(colour);
    const StyledText text =
        json ? StyledText{{Style::Plain, ReportJson(report) + '\n'}} : FormatReport(report);
    if (!output.Write(text)) {
        std::fputs("kestractl: standard output cannot be written\n", stderr);
        return ExitCode::Failed;
    }
    return ExitCode::Done;
}

ExitCode Main(int count, wchar_t** words)
{
    bool json = false;
    bool colour = true;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view word = words[i];
        if (word == L"--json") {
            json = true;
        } else if (word == L"--no-color") {
            colour = false;
        } else if (word == L"--help" || word == L"-h" || word == L"/?") {
            std::fputs(kUsage, stdout);
            return ExitCode::Done;
        } else {
            std::fprintf(stderr, "kestractl: not understood: %s\n%s", ToUtf8(word).c_str(), kUsage);
            return ExitCode::Usage;
        }
    }
    return Show(json, colour);
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
