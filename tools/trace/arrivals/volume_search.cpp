#include "tools/trace/arrivals/volume_search.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

void ForgetAttempt(Arrival& volume)
{
    volume.folders = volume.files = 0;
    volume.deepestLevel = 0;
}

void TakeEntry(VolumeSearch& search, Arrival& volume, const TraceEvent& event)
{
    if (search.attemptOver) {
        search.attemptOver = false;
        ForgetAttempt(volume);
    }
    if (event.type == EventType::FileSeen) {
        ++volume.files;
        volume.file = event.file;
    } else {
        ++volume.folders;
    }
    volume.deepestLevel = std::max(volume.deepestLevel, event.level);
}

void TakeFailedAttempt(VolumeSearch& search, Arrival& volume)
{
    ++volume.attempts;
    if (search.attemptOver) { // not one line in this attempt
        ForgetAttempt(volume);
        volume.file.clear();
    }
    search.attemptOver = true;
}

const char* WhyRefused(const VolumeSearch& search, const Arrival& volume)
{
    if (search.unfit) {
        return kUnfitDrive;
    }
    if (search.searchOff) {
        return kSearchOff;
    }
    if (volume.attempts == 0) {
        return kReasonNotSeen;
    }
    return volume.folders + volume.files == 0 ? kNothingListed : kNoSupportedFile;
}

} // namespace

void TakeSearchLine(VolumeSearch& search, Arrival& volume, const TraceEvent& event)
{
    switch (event.type) {
    case EventType::VolumeUnfit:
        search.unfit = true;
        break;
    case EventType::SearchOff:
        search.searchOff = true;
        break;
    case EventType::FolderSeen:
    case EventType::FileSeen:
        TakeEntry(search, volume, event);
        break;
    case EventType::AttemptFailed:
        TakeFailedAttempt(search, volume);
        break;
    case EventType::FileFits:
        ++volume.attempts;
        volume.decision = Decision::Accepted;
        volume.rule = kSupportedFile;
        volume.outcome = kNoStartSeen;
        break;
    case EventType::VolumeRefused:
        volume.decision = Decision::Refused;
        volume.rule = WhyRefused(search, volume);
        break;
    default:
        break;
    }
}

} // namespace kestraboot::tools
