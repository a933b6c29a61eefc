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
#pragma once

#include "tools/trace/arrivals/open_devices.h"
#include "tools/trace/arrivals/trace_event.h"
#include "tools/trace/lines/seen_line.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

class ProcessArrivals
{
public:
    using Tell = OpenDevices::Tell;

    static constexpr std::int64_t kLongestNotice = 10'000; // milliseconds
    static constexpr std::size_t kMostPlugins = 32;

    /// `teller` is to outlive it.
    ProcessArrivals(std::uint32_t processId, const Tell& teller) : id(processId), devices(teller) {}

    [[nodiscard]] std::uint32_t Id() const noexcept { return id; }

    void Take(const SeenLine& line, const TraceEvent& event);

    /// It wrote a line with a component, so that its start lines are the launcher's.
    void SetHasTheLibrary() noexcept { hasTheLibrary = true; }

    /// Tells what has waited too long.
    void Tick(std::int64_t upMilliseconds) { devices.Tick(upMilliseconds); }

    /// Tells everything that is still open.
    void End();

    /// Nothing is open or known of it, and no line came for long.
    [[nodiscard]] bool IsOver(std::int64_t upMilliseconds) const noexcept;
    [[nodiscard]] std::size_t OpenCount() const noexcept { return devices.WaitingCount(); }

private:
    OpenDevice& Open(DeviceState state, const SeenLine& line, const char* tracker,
                     const TraceEvent& event);
    OpenDevice& OpenUnannounced(const SeenLine& line, const TraceEvent& event);
    /// The notice, where it is not too old for this line.
    [[nodiscard]] std::optional<TimeStamp> FreshNotice(const SeenLine& line) const;
    void TakePlugin(const std::string& name);
    void TakeVolumeFound(const SeenLine& line, const TraceEvent& event);
    void TakeSearch(const SeenLine& line, const TraceEvent& event);
    void TakeDeviceFound(const SeenLine& line, const TraceEvent& event);
    void TakeLaunch(const SeenLine& line, const TraceEvent& event);
    void TakeNoneInstalled(const SeenLine& line);
    void TakeStart(const SeenLine& line);
    void EndVolume();

    const std::uint32_t id;
    std::int64_t lastLine = 0;
    bool hasTheLibrary = false;
    std::vector<std::string> plugins; ///< those that said that they serve
    std::optional<TimeStamp> notice;  ///< the first of those that came together
    OpenDevices devices;
};

} // namespace kestraboot::tools
