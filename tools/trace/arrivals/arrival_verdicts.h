// Puts the lines of all processes together into one verdict for each device that arrived.
//
// What is kept is bounded: so many processes; what is open of the one that was silent for longest is
// told as it stands.
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

    /// To be called now and then: tells what has waited too long. `upMilliseconds` as in TimeStamp.
    void Tick(std::int64_t upMilliseconds);

    /// Tells everything that is still open.
    void End();

    [[nodiscard]] std::size_t OpenCount() const noexcept;

private:
    ProcessArrivals& ProcessOf(const SeenLine& line);

    const Tell tell;
    std::list<ProcessArrivals> processes; ///< the one that spoke last at the end
};

} // namespace kestraboot::tools
