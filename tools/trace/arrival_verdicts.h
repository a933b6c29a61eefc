// Puts the lines of all processes together into one verdict for each device that arrived.
//
// A volume is found, searched in up to three attempts and accepted or refused; imaging devices are
// accepted by the very line that names them. An accepted device is handed to the host, and the launcher
// then says what it started, or why not. Trackers run on threads of their own and a line does not say
// which wrote it: a start line is given to the device that it names, a refusal of the launcher to the
// device that was accepted first, since devices are handed over one at a time. A start line that names
// no waiting device is an arrival of its own: plugins write no line; unless the started program itself
// may have written it. A process that finds no application left ends: at a start, or when a search asks
// for its settings, so also before the volume is decided on.
//
// A verdict is told as soon as nothing more can come. An accepted device for which the launcher says
// nothing waits for kLongestLaunch; one in the middle of its search for kLongestSilence, since its
// process may be gone. Of a start that comes after all, within kLongestSilence of the device's last
// line, the verdict is told once more.
//
// What is kept is bounded: so many processes, so many devices of each; the oldest are told as they
// stand.
#pragma once

#include "tools/trace/arrival.h"
#include "tools/trace/seen_line.h"
#include "tools/trace/start_line.h"
#include "tools/trace/trace_event.h"
#include "tools/trace/volume_search.h"

#include <cstdint>
#include <functional>
#include <list>
#include <optional>

namespace kestraboot::tools
{

class ArrivalVerdicts
{
public:
    using Tell = std::function<void(const Arrival&)>;

    static constexpr std::size_t kMostProcesses = 64;
    static constexpr std::size_t kMostWaiting = 32;
    static constexpr std::int64_t kLongestNotice = 10'000; // milliseconds
    static constexpr std::int64_t kLongestLaunch = 60'000;
    static constexpr std::int64_t kLongestSilence = 600'000;

    explicit ArrivalVerdicts(Tell teller) : tell(std::move(teller)) {}

    void Take(const SeenLine& line);

    /// To be called now and then: tells what has waited too long. `upMilliseconds` as in TimeStamp.
    void Tick(std::int64_t upMilliseconds);

    /// Tells everything that is still open.
    void End();

    [[nodiscard]] std::size_t OpenCount() const noexcept;

private:
    struct Waiting {
        Arrival arrival;
        std::int64_t lastLine; ///< upMilliseconds
        VolumeSearch search = {};
    };
    struct Process {
        std::uint32_t id;
        std::int64_t lastLine;
        bool hasTheLibrary;              ///< it wrote a line with a component
        std::optional<TimeStamp> notice; ///< the first of those that came together
        std::list<Waiting> waiting;      ///< accepted ones in the order of their acceptance
        std::list<Waiting> givenUp;      ///< told without a start, which may come yet
    };
    using Place = std::list<Waiting>::iterator;

    Process& ProcessOf(const SeenLine& line);
    Place Open(Process& process, const SeenLine& line, const char* tracker, const TraceEvent& event);
    Place OpenUnannounced(Process& process, const SeenLine& line, const TraceEvent& event);
    static bool HasFreshNotice(const Process& process, const SeenLine& line);
    void TakeVolumeFound(Process& process, const SeenLine& line, const TraceEvent& event);
    void TakeSearch(Process& process, const SeenLine& line, const TraceEvent& event);
    void TakeDeviceFound(Process& process, const SeenLine& line, const TraceEvent& event);
    void TakeLaunch(Process& process, const SeenLine& line, const TraceEvent& event);
    void TakeNoneInstalled(Process& process, const SeenLine& line);
    static Place FindNamed(Process& process, const StartLine& start);
    void TakeStart(Process& process, const SeenLine& line);
    void EndVolume(Process& process);
    void Close(Process& process, Place place);
    void CloseAll(Process& process);

    Tell tell;
    std::list<Process> processes; ///< the one that spoke last at the end
};

} // namespace kestraboot::tools
