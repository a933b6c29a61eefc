#include "tools/ctl/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace kestraboot::tools
{

CtlOptions ReadCtlOptions(std::vector<std::string> words)
{
    CtlOptions options;
    CLI::App app;
    app.set_help_flag();
    app.allow_windows_style_options();
    app.allow_extras();
    app.add_flag("--check", options.check);
    app.add_flag("--json", options.json);
    app.add_flag("--no-color", options.noColour);
    app.add_flag("-h,-?,--help", options.help);
    app.add_flag("--version", options.version);
    std::ranges::reverse(words); // as CLI11 takes them
    const std::string first = words.empty() ? std::string() : words.back();
    try {
        app.parse(words);
        const std::vector<std::string> extras = app.remaining();
        if (!extras.empty()) {
            options.notUnderstood = extras.front().empty() ? "(nothing)" : extras.front();
        }
    } catch (const CLI::ParseError&) {
        options.notUnderstood = first; // such as a flag with a value
    }
    return options;
}

const char* CtlUsage()
{
    return "usage: kestractl [--json] [--no-color]\n"
           "       kestractl --check [--json] [--no-color]\n"
           "\n"
           "  kestractl --check              why does nothing happen on this machine?\n"
           "  kestractl --json >report.json  what the library sees, for a program\n"
           "\n"
           "Shows the compatible applications as the library sees them, which are left out and why, "
           "the\n"
           "auto-run entry, and the legacy organiser. Changes nothing.\n"
           "\n"
           "  --check     one table of all that devices depend on: what is fine, suspicious or broken,\n"
           "              why, and what to do\n"
           "  --json      one JSON object on one line\n"
           "  --no-color  one colour on a console, as with NO_COLOR in the environment\n"
           "  --version   the version, and which build it is\n"
           "\n"
           "exit codes: 0 shown, 1 failed, 2 usage, 4 --check found something broken\n";
}

} // namespace kestraboot::tools
