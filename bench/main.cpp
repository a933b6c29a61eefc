// Measures one row: bench.exe ROW SIZE ROUNDS [CARD]
#include "bench/allocations_row.h"
#include "bench/dispatch_row.h"
#include "bench/launch_row.h"
#include "bench/own_rows.h"
#include "bench/poll_row.h"
#include "bench/registry_row.h"
#include "bench/road_row.h"
#include "bench/walk_rows.h"

#include <cstdio>
#include <exception>
#include <functional>
#include <map>

using namespace kestraboot::bench;

namespace
{

const std::map<std::string, std::function<void(const Request&)>> kRows = {
    {"allocations", CountAllocations},
    {"dispatch", CompeteInDispatch},
    {"launch", CompeteInComposing},
    {"load-information", CompeteInLoading},
    {"own-load", MeasureOwnLoading},
    {"own-poll", MeasureOwnPoll},
    {"own-walk", MeasureOwnWalk},
    {"poll", CompeteInPolling},
    {"quiet-walk", CompeteInQuietWalk},
    {"road", CompeteOnRoad},
    {"road-without-start", CompeteOnRoadWithoutStart},
    {"search", CompeteInSearch},
    {"walk", CompeteInWalk},
};

} // namespace

int main(int count, char** words)
{
    try {
        if (count < 4) {
            std::fputs("usage: bench ROW SIZE ROUNDS [CARD]\n", stderr);
            return 2;
        }
        const Request request = {words[1], words[2], std::stoi(words[3]), count > 4 ? words[4] : ""};
        kRows.at(request.row)(request);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
}
