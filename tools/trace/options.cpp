#include "tools/trace/options.h"

#include "tools/common/utf8.h"

namespace kestraboot::tools
{
namespace
{

/// Up to nine digits and not zero: some thirty years.
std::optional<std::uint64_t> ParseSeconds(const std::wstring& word)
{
    constexpr std::size_t kMostDigits = 9;
    std::uint64_t seconds = 0;
    for (const wchar_t digit : word) {
        if (digit < L'0' || digit > L'9') {
            return std::nullopt;
        }
        seconds = seconds * 10 + static_cast<std::uint64_t>(digit - L'0');
    }
    return word.size() <= kMostDigits && seconds != 0 ? std::optional(seconds) : std::nullopt;
}

bool TakeFlag(const std::wstring& word, TraceOptions& options)
{
    if (word == L"--arrivals") {
        options.arrivals = true;
    } else if (word == L"--json") {
        options.json = true;
    } else if (word == L"--no-color") {
        options.colour = false;
    } else if (word == L"--help" || word == L"-h" || word == L"/?") {
        options.help = true;
    } else {
        return false;
    }
    return true;
}

} // namespace

std::optional<TraceOptions> ParseTraceOptions(const std::vector<std::wstring>& words, std::string& wrong)
{
    TraceOptions options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::wstring& word = words[i];
        if (TakeFlag(word, options)) {
            continue;
        }
        if (word == L"--only" || word == L"--file") {
            if (++i == words.size() || words[i].empty() || words[i].starts_with(L"--")) {
                wrong = ToUtf8(word) + " needs a value";
                return std::nullopt;
            }
            if (word == L"--only") {
                options.only.push_back(ToUtf8(words[i]));
            } else {
                options.file = words[i];
            }
            continue;
        }
        const std::optional<std::uint64_t> seconds = ParseSeconds(word);
        if (!seconds || options.seconds != 0) {
            wrong = "not understood: " + ToUtf8(word);
            return std::nullopt;
        }
        options.seconds = *seconds;
    }
    return options;
}

const char* TraceUsage() noexcept
{
    return "usage: kestratrace [--arrivals] [--json] [--only TAG]... [--file PATH] [--no-color] "
           "[seconds]\n"
           "\n"
           "Shows the debug lines of every program of this session as they come, until Ctrl+C or for "
           "that\n"
           "many seconds.\n"
           "\n"
           "  --arrivals    one verdict for each device that arrives, in place of the lines\n"
           "  --json        one JSON object a line\n"
           "  --only TAG    only lines of this component or tracker: DeviceConnect, KestraBoot,\n"
           "                KestraProxy, KestraProxy:OEM, VolumeTracker, WiaTracker, StiTracker, "
           "Plugin;\n"
           "                can be given several times\n"
           "  --file PATH   writes the same to the end of this file too\n"
           "  --no-color    one colour on a console\n"
           "\n"
           "exit codes: 0 done, 1 failed, 2 usage, 3 another program reads the debug output\n";
}

} // namespace kestraboot::tools
