// Combines the lines of all processes into one verdict for each device that arrived.
//
// The memory is bounded by a number of processes. Beyond it, the open verdicts of the process that
// was silent for longest are shown unfinished.
#pragma once

#include "tools/trace/arrivals/process_arrivals.h"

#include <cstdint>
#include <list>
#include <utility>

namespace kestraboot::tools
{

class ArrivalVerdicts
{
public:
    using Tell = ProcessArrivals::Tell;

    static constexpr std::size_t kMostProcesses = 64;

    explicit ArrivalVerdicts(Tell teller) : tell(std::move(teller)) {}
    ArrivalVerdicts(const ArrivalVerdicts&) = delete;
    ArrivalVerdicts& operator=(const ArrivalVerdicts&) = delete;

    void Take(const SeenLine& line);

    /// Call it now and then: shows verdicts that have waited too long. `upMilliseconds` as in
    /// TimeStamp.
    void Tick(std::int64_t upMilliseconds);

    /// Shows every verdict that is still open.
    void End();

    [[nodiscard]] std::size_t OpenCount() const noexcept;

private:
    ProcessArrivals& ProcessOf(const SeenLine& line);

    const Tell tell;
    std::list<ProcessArrivals> processes; ///< the process that wrote last at the end
};

} // namespace kestraboot::tools
