#include "tools/trace/arrivals/open_devices.h"

#include "tools/trace/arrivals/start_match.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kestraboot::tools
{
namespace
{

template <typename Fits>
OpenDevice* FirstOf(std::list<OpenDevice>& devices, Fits fits)
{
    const auto found = std::ranges::find_if(devices, fits);
    return found != devices.end() ? &*found : nullptr;
}

auto PlaceOf(std::list<OpenDevice>& devices, const OpenDevice& device)
{
    return std::ranges::find_if(devices, [&](const OpenDevice& other) {
        return &other == &device;
    });
}

} // namespace

OpenDevice* OpenDevices::Searching()
{
    return FirstOf(waiting, [](const OpenDevice& device) {
        return device.state == DeviceState::Searching;
    });
}

OpenDevice* OpenDevices::AcceptedFirst()
{
    return FirstOf(waiting, [](const OpenDevice& device) {
        return device.state == DeviceState::Launching;
    });
}

OpenDevice* OpenDevices::Volume()
{
    return FirstOf(waiting, [](const OpenDevice& device) {
        return device.arrival.tracker == kVolumeTracker;
    });
}

OpenDevice* OpenDevices::Named(const StartLine& start)
{
    const auto named = [&](const OpenDevice& device) {
        return device.state != DeviceState::Searching && Names(start, device.arrival);
    };
    OpenDevice* const launching = FirstOf(waiting, named);
    return launching != nullptr ? launching : FirstOf(givenUp, named);
}

OpenDevice& OpenDevices::Add(DeviceState state, Arrival arrival, std::int64_t line)
{
    if (waiting.size() == kMostWaiting) {
        Conclude(waiting.front());
    }
    waiting.push_back({state, std::move(arrival), line});
    return waiting.back();
}

void OpenDevices::Accept(const OpenDevice& device)
{
    const auto place = PlaceOf(waiting, device);
    place->state = DeviceState::Launching;
    waiting.splice(waiting.end(), waiting, place);
}

void OpenDevices::Conclude(const OpenDevice& device)
{
    std::list<OpenDevice>& from = device.state == DeviceState::GivenUp ? givenUp : waiting;
    std::list<OpenDevice> concluded;
    concluded.splice(concluded.begin(), from, PlaceOf(from, device));
    OpenDevice& last = concluded.front();
    tell(last.arrival);
    if (std::string_view(last.arrival.outcome) == kNoStartSeen) {
        last.state = DeviceState::GivenUp;
        givenUp.splice(givenUp.end(), concluded);
        if (givenUp.size() > kMostWaiting) {
            givenUp.pop_front();
        }
    }
}

void OpenDevices::ConcludeAll(const std::function<void(OpenDevice&)>& last)
{
    std::ranges::for_each(waiting, last);
    while (!waiting.empty()) {
        Conclude(waiting.front());
    }
}

void OpenDevices::Tick(std::int64_t upMilliseconds)
{
    const auto silence = [&](const OpenDevice& device) {
        return upMilliseconds - device.lastLine;
    };
    for (auto place = waiting.begin(); place != waiting.end();) {
        const OpenDevice& device = *place++;
        if (silence(device) >
            (device.state == DeviceState::Launching ? kLongestLaunch : kLongestSilence)) {
            Conclude(device);
        }
    }
    std::erase_if(givenUp, [&](const OpenDevice& device) {
        return silence(device) > kLongestSilence;
    });
}

} // namespace kestraboot::tools
