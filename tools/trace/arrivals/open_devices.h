// The devices of one process for which something more may come, each in one of three states.
//
//   Searching  a volume on which the search has not decided
//      |  a file fits
//   Launching  accepted: what the launcher says is still to come      (imaging devices begin here)
//      |  told without a start
//   GivenUp    a start may come after all, and is told once more
//
// From each of them a device leaves as soon as nothing more can come. What is kept is bounded: so many
// devices; the oldest are told as they stand.
#pragma once

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/arrivals/volume_search.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>

namespace kestraboot::tools
{

struct StartLine;

enum class DeviceState { Searching, Launching, GivenUp };

struct OpenDevice {
    DeviceState state;
    Arrival arrival;
    std::int64_t lastLine; ///< about it; upMilliseconds
    VolumeSearch search = {};
};

class OpenDevices
{
public:
    using Tell = std::function<void(const Arrival&)>;

    static constexpr std::size_t kMostWaiting = 32;
    static constexpr std::int64_t kLongestLaunch = 60'000; // milliseconds
    static constexpr std::int64_t kLongestSilence = 600'000;

    /// `teller` is to outlive it.
    explicit OpenDevices(const Tell& teller) : tell(teller) {}

    // Null where there is none.
    [[nodiscard]] OpenDevice* Searching();
    [[nodiscard]] OpenDevice* AcceptedFirst();
    [[nodiscard]] OpenDevice* Volume(); ///< searching or launching
    /// The one that the start names: one that launches, else one that was given up.
    [[nodiscard]] OpenDevice* Named(const StartLine& start);

    OpenDevice& Add(DeviceState state, Arrival arrival, std::int64_t line);

    /// From Searching to Launching, behind those that were accepted before.
    void Accept(const OpenDevice& device);

    /// Tells what became of it: it leaves, or is given up.
    void Conclude(const OpenDevice& device);

    /// For each that searches or launches, then tells them.
    void ConcludeAll(const std::function<void(OpenDevice&)>& last);

    /// Concludes what has waited too long.
    void Tick(std::int64_t upMilliseconds);

    [[nodiscard]] std::size_t WaitingCount() const noexcept { return waiting.size(); }

private:
    const Tell& tell;
    std::list<OpenDevice>
        waiting; ///< Searching or Launching; the latter in the order of their acceptance
    std::list<OpenDevice> givenUp;
};

} // namespace kestraboot::tools
