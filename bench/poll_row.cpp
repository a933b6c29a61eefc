#include "bench/poll_row.h"

#include "bench/card.h"
#include "bench/contest.h"
#include "bench/floors/drives.h"
#include "trackers/volume/volume_scan.h"

#include <memory>
#include <vector>

namespace kestraboot::bench
{

void CompeteInPolling(const Request& request)
{
    std::vector<std::unique_ptr<Card>> cards;
    for (int i = 0; i < request.Number(); ++i) {
        cards.push_back(std::make_unique<Card>(static_cast<wchar_t>(L'E' + i), request.card));
    }
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  scan.Scan();
              }},
             {"floor", 1.05, [] {
                  LookAtDrives();
              }}});
}

} // namespace kestraboot::bench
