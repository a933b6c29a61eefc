#include "bench/own_rows.h"

#include "bench/contest.h"
#include "bench/instant_windows.h"
#include "bench/walk_rows.h"
#include "kestraboot/information_handler.h"
#include "service/media_walk.h"
#include "trackers/volume/volume_scan.h"

#include <stdexcept>

namespace kestraboot::bench
{
namespace
{

void Require(bool asExpected)
{
    if (!asExpected) {
        throw std::logic_error("the library did not do the work: the measurement would be of nothing");
    }
}

} // namespace

void MeasureOwnWalk(const Request& request)
{
    const InstantWindows instant;
    const ExtensionSet extensions = MediaExtensions();
    Measure(request.row, request.size, request.rounds, 50, InstantWindows::kFiles, [&] {
        Require(!FindSupportedFile(L"E:", 4, extensions));
    });
}

void MeasureOwnLoading(const Request& request)
{
    const InstantWindows instant;
    CKestraBootInformationHandler handler;
    std::vector<appInfo_tag> loaded;
    handler.LoadInformation();
    Require(handler.GetAllApplicationInfo(loaded) && loaded.size() == InstantWindows::kApplications &&
            loaded.back().FileFormats.size() == 16);
    Measure(request.row, request.size, request.rounds, 4000, InstantWindows::kApplications, [&] {
        handler.LoadInformation();
    });
}

void MeasureOwnPoll(const Request& request)
{
    const InstantWindows instant;
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    Require(scan.Polling());
    Measure(request.row, request.size, request.rounds, 2000, 1, [&] {
        scan.Scan();
    });
}

} // namespace kestraboot::bench
