#include "tools/trace/options.h"

#include "tools/common/utf8.h"

#include <CLI/CLI.hpp>

#include <windows.h>
#include <algorithm>
#include <memory>
#include <stdexcept>

namespace kestraboot::tools
{
namespace
{

constexpr std::uint64_t kSmallestFile = 4'096;
constexpr std::uint64_t kMostSeconds = 999'999'999; // about 30 years
constexpr unsigned kMostKept = 999;
constexpr std::size_t kOptionColumn = 24;

constexpr const char* kExamples =
    "examples:\n"
    "  kestratrace --arrivals                     what becomes of each device that "
    "arrives from now on\n"
    "  kestratrace --from trace.log --arrivals    the same of what was recorded with "
    "--file trace.log\n\n";
constexpr const char* kUsage =
    "usage: kestratrace [--arrivals] [--json] [--only TAG]... [--process NAME|PID]... [--match TEXT]\n"
    "                   [--file PATH [--rotate SIZE [--keep N]]] [--no-color] [--from FILE]... "
    "[seconds]\n";
constexpr const char* kWhat =
    "\nShows the debug lines of every program of this session as they come, until Ctrl+C or for that\n"
    "many seconds.\n";
constexpr const char* kFooter =
    "NO_COLOR in the environment does what --no-color does.\n\n"
    "exit codes: 0 done, 1 failed, 2 usage, 3 another program reads the debug output";

std::string TagList(const char* beforeTrackers)
{
    std::string list;
    for (const std::string_view tag : kTags) {
        list += (tag == kTags[kFirstTracker] ? beforeTrackers : "") + std::string(tag) + ", ";
    }
    return list + "Plugin:NAME";
}

std::string CheckTag(const std::string& tag)
{
    return IsTag(tag) ? std::string() : "there is no tag " + tag + "; there are " + TagList("");
}

/// Refuses a value that is the next option.
std::string CheckValue(const std::string& value)
{
    return value.empty() || value.starts_with("--") ? "needs a value" : std::string();
}

std::wstring ToPath(const std::string& utf8)
{
    std::wstring path(utf8.size(), L'\0'); // never more units than bytes
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                             path.data(), static_cast<int>(path.size()));
    if (length == 0 && !utf8.empty()) {
        throw std::runtime_error("cannot convert the name " + utf8);
    }
    path.resize(static_cast<std::size_t>(length));
    return path;
}

/// The values of the options that are text, before they are converted.
struct Texts {
    std::string file;
    std::vector<std::string> from;
};

/// Shows examples, the usage, then each option, as is usual. The library's own remarks on types and
/// on which option needs which are in the usage.
class Help : public CLI::Formatter
{
public:
    std::string make_option_name(const CLI::Option* option, bool positional) const override
    {
        const std::string name = option->get_name(positional, true);
        return name.substr(0, name.find('{')); // "{false}" of a flag that switches off
    }
    std::string make_option_opts(const CLI::Option* option) const override
    {
        const std::string value = option->get_items_expected_max() != 0 ? option->get_type_name() : "";
        return value.empty() ? value : ' ' + value.substr(0, value.find(':'));
    }
    std::string make_description(const CLI::App* /*app*/) const override { return kExamples; }
    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override
    {
        return std::string(kUsage) + kWhat;
    }
};

void Describe(CLI::App& app, TraceOptions& options, Texts& texts)
{
    const auto help = std::make_shared<Help>();
    help->column_width(kOptionColumn);
    help->label("TEXT", "");
    app.formatter(help);
    app.footer(kFooter);
    app.allow_windows_style_options(false);

    // The first option, because CLI11 2.4 compares a positional name with all earlier ones in a
    // function that may not throw, and allocates there.
    app.set_help_flag();
    CLI::Option* const seconds = app.add_option("seconds", options.seconds, "how long to go on")
                                     ->type_name("")
                                     ->check(CLI::Range(std::uint64_t{1}, kMostSeconds));
    app.set_help_flag("-h,--help", "this");
    app.add_flag("--arrivals", options.arrivals,
                 "one verdict for each device that arrives, in place of the lines");
    app.add_flag("--json", options.json, "one JSON object a line");
    app.add_option("--only", options.wanted.tags,
                   "shows only lines and arrivals of this component or tracker;\n"
                   "can be given several times:\n" +
                       TagList("\n"))
        ->type_name("TAG")
        ->allow_extra_args(false)
        ->check(CheckValue)
        ->check(CheckTag);
    app.add_option("--process", options.wanted.processes,
                   "shows only those of this process; can be given several times")
        ->type_name("NAME|PID")
        ->allow_extra_args(false)
        ->check(CheckValue);
    app.add_option("--match", options.wanted.text,
                   "shows only those that contain this text, in upper or lower case")
        ->type_name("TEXT")
        ->check(CheckValue);
    CLI::Option* const file =
        app.add_option("--file", texts.file, "writes the same to the end of this file too")
            ->type_name("PATH")
            ->check(CheckValue);
    CLI::Option* const rotate =
        app.add_option(
               "--rotate", options.rotate,
               "begins a new file before it exceeds SIZE, such as 10M;\nearlier ones are PATH.1, "
               "PATH.2, ...")
            ->type_name("SIZE")
            ->needs(file)
            ->transform(CLI::AsSizeValue(false));
    app.add_option("--keep", options.keep, "earlier files that are kept (5)")
        ->type_name("N")
        ->needs(rotate)
        ->check(CLI::Range(1U, kMostKept));
    CLI::Option* const from = app.add_option("--from", texts.from,
                                             "shows this recording in place of the debug output: what "
                                             "--file or --json\nwrote, or another "
                                             "viewer's log; several times: the oldest first")
                                  ->type_name("FILE")
                                  ->allow_extra_args(false)
                                  ->check(CheckValue);
    app.add_flag("!--no-color", options.colour, "one colour on a console");
    app.add_flag("--version", options.version, "the version, and which build it is");
    seconds->excludes(from);
}

} // namespace

std::optional<TraceOptions> ParseTraceOptions(const std::vector<std::wstring>& words, std::string& wrong)
{
    TraceOptions options;
    Texts texts;
    CLI::App app;
    Describe(app, options, texts);
    std::vector<std::string> reversed; // as the parser takes them
    for (const std::wstring& word : words) {
        reversed.insert(reversed.begin(), word == L"/?" ? "--help" : ToUtf8(word));
    }
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        options.help = true;
        return options;
    } catch (const CLI::ParseError& error) {
        wrong = error.what();
        return std::nullopt;
    }
    if (options.rotate != 0 && options.rotate < kSmallestFile) {
        wrong = "--rotate: less than " + std::to_string(kSmallestFile) + " bytes";
        return std::nullopt;
    }
    options.file = ToPath(texts.file);
    std::ranges::transform(texts.from, std::back_inserter(options.from), ToPath);
    return options;
}

const char* TraceUsage() noexcept
{
    return kUsage;
}

std::string TraceHelp()
{
    TraceOptions options;
    Texts texts;
    CLI::App app;
    Describe(app, options, texts);
    return app.help();
}

} // namespace kestraboot::tools
