// The devices that arrived at one process, from its lines.
//
// A volume is found, searched in up to three attempts and accepted or refused; imaging devices are
// accepted by the very line that names them. An accepted device is handed to the host, and the launcher
// then says what it started, or why not. Trackers run on threads of their own and a line does not say
// which wrote it: a start line is given to the device that it names, a refusal of the launcher to the
// device that was accepted first, since devices are handed over one at a time. A start line that names
// no waiting device is an arrival of its own, since plugins write no line; unless the started program
// itself may have written it. A process that finds no application left ends: at a start, or when a
// search asks for its settings, so also before the volume is decided on.
//
// A verdict is told as soon as nothing more can come. An accepted device for which the launcher says
// nothing waits for kLongestLaunch; one in the middle of its search for kLongestSilence, since its
// process may be gone. Of a start that comes after all, within kLongestSilence of the device's last
// line, the verdict is told once more.
//
// What is kept is bounded: so many devices; the oldest are told as they stand.
#pragma once

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/arrivals/trace_event.h"
#include "tools/trace/arrivals/volume_search.h"
#include "tools/trace/lines/seen_line.h"
#include "tools/trace/lines/start_line.h"

#include <cstdint>
#include <functional>
#include <list>
#include <optional>

namespace kestraboot::tools
{

class ProcessArrivals
{
public:
    using Tell = std::function<void(const Arrival&)>;

    static constexpr std::size_t kMostWaiting = 32;
    static constexpr std::int64_t kLongestNotice = 10'000; // milliseconds
    static constexpr std::int64_t kLongestLaunch = 60'000;
    static constexpr std::int64_t kLongestSilence = 600'000;

    /// `teller` is to outlive it.
    ProcessArrivals(std::uint32_t processId, const Tell& teller) : id(processId), tell(teller) {}

    [[nodiscard]] std::uint32_t Id() const noexcept { return id; }

    void Take(const SeenLine& line, const TraceEvent& event);

    /// It wrote a line with a component, so that its start lines are the launcher's.
    void SetHasTheLibrary() noexcept { hasTheLibrary = true; }

    /// Tells what has waited too long.
    void Tick(std::int64_t upMilliseconds);

    /// Tells everything that is still open.
    void End();

    /// Nothing is open, and no line came for long.
    [[nodiscard]] bool IsOver(std::int64_t upMilliseconds) const noexcept;
    [[nodiscard]] std::size_t OpenCount() const noexcept { return waiting.size(); }

private:
    struct Waiting {
        Arrival arrival;
        std::int64_t lastLine; ///< upMilliseconds
        VolumeSearch search = {};
    };
    using Place = std::list<Waiting>::iterator;

    Place Open(const SeenLine& line, const char* tracker, const TraceEvent& event);
    Place OpenUnannounced(const SeenLine& line, const TraceEvent& event);
    [[nodiscard]] bool HasFreshNotice(const SeenLine& line) const;
    void TakeVolumeFound(const SeenLine& line, const TraceEvent& event);
    void TakeSearch(const SeenLine& line, const TraceEvent& event);
    void TakeDeviceFound(const SeenLine& line, const TraceEvent& event);
    void TakeLaunch(const SeenLine& line, const TraceEvent& event);
    void TakeNoneInstalled(const SeenLine& line);
    Place FindNamed(const StartLine& start);
    void TakeStart(const SeenLine& line);
    void EndVolume();
    void Close(Place place);

    const std::uint32_t id;
    const Tell& tell;
    std::int64_t lastLine = 0;
    bool hasTheLibrary = false;
    std::optional<TimeStamp> notice; ///< the first of those that came together
    std::list<Waiting> waiting;      ///< accepted ones in the order of their acceptance
    std::list<Waiting> givenUp;      ///< told without a start, which may come yet
};

} // namespace kestraboot::tools
