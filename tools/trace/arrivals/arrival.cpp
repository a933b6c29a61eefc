#include "tools/trace/arrivals/arrival.h"

#include <string_view>

namespace kestraboot::tools
{
namespace
{

struct Words {
    std::string_view rule;
    const char* text;
};

constexpr Words kWhy[] = {
    {kImagingDevice, "the imaging service lists it as such"},
    {kTwainSource, "a TWAIN source came with it"},
    {kPluginReport, "no tracker's line came before, as when a device plugin reports it"},
    {kNoDevice, "no line names one, as when the host starts an application by itself"},
    {kUnfitDrive, "neither a removable drive nor a fixed one with the maker's file system"},
    {kSearchOff, "\"SniffDepth\" is 0: cards are switched off"},
    {kNoSupportedFile, "no file of a supported format was found within the folder levels of "
                       "\"SniffDepth\", or a folder could not be listed"},
    {kNothingListed, "nothing on it could be listed: it is empty or cannot be read"},
    {kNoDeviceType, "neither a camera nor a scanner in the imaging service's list"},
    {kNoApplication, "no compatible application is left: the process ends"},
    {kReasonNotSeen, "the line that says why was lost"},
    {kUnfinished, "no further line came"},
};

constexpr Words kOutcomes[] = {
    {kOutsideConsoleSession, "the process is not in the active console session"},
    {kNoMode, "the host gave no launch mode"},
    {kNoOwnApplication, "no application's proxy is the running program"},
    {kNoApplication, "no compatible application is installed"},
    {kOrganiserNotStarted, "the legacy organiser's proxy could not be started"},
    {kNoStartSeen, "no start line came"},
};

template <std::size_t Count>
std::string Find(const Words (&words)[Count], std::string_view rule)
{
    for (const Words& entry : words) {
        if (entry.rule == rule) {
            return entry.text;
        }
    }
    return {};
}

} // namespace

std::string WhyText(const Arrival& arrival)
{
    if (std::string_view(arrival.rule) == kSupportedFile) {
        return arrival.file.empty() ? "it contains a file of a supported format"
                                    : arrival.file + " is of a supported format";
    }
    return Find(kWhy, arrival.rule);
}

std::string OutcomeText(const Arrival& arrival)
{
    return Find(kOutcomes, arrival.outcome);
}

} // namespace kestraboot::tools
