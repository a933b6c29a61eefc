// The devices of one process for which more lines may come, each in one of three states.
//
//   Searching  a volume whose scan has not decided yet
//      |  a file fits
//   Launching  accepted: the launcher's line is still to come         (imaging devices begin here)
//      |  shown without a start
//   GivenUp    if a start comes after all, the device is shown once more
//
// A device leaves each state as soon as no more lines can come. The memory is bounded by a number
// of devices; beyond it, the oldest are shown unfinished.
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

    /// `teller` must outlive it.
    explicit OpenDevices(const Tell& teller) : tell(teller) {}

    // Null if there is none.
    [[nodiscard]] OpenDevice* Searching();
    [[nodiscard]] OpenDevice* AcceptedFirst();
    [[nodiscard]] OpenDevice* Volume(); ///< searching or launching
    /// The device that the start names: one in Launching, else one in GivenUp.
    [[nodiscard]] OpenDevice* Named(const StartLine& start);

    OpenDevice& Add(DeviceState state, Arrival arrival, std::int64_t line);

    /// From Searching to Launching, after the devices that were accepted before.
    void Accept(const OpenDevice& device);

    /// Shows the verdict: the device leaves, or goes to GivenUp.
    void Conclude(const OpenDevice& device);

    /// Applies it to each device in Searching or Launching, then shows them.
    void ConcludeAll(const std::function<void(OpenDevice&)>& last);

    /// Concludes the devices that have waited too long.
    void Tick(std::int64_t upMilliseconds);

    [[nodiscard]] std::size_t WaitingCount() const noexcept { return waiting.size(); }

private:
    const Tell& tell;
    std::list<OpenDevice>
        waiting; ///< Searching or Launching; the latter in the order of their acceptance
    std::list<OpenDevice> givenUp;
};

} // namespace kestraboot::tools
