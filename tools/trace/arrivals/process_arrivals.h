// The devices that arrived at one process, from its lines.
//
// A volume is found, scanned in up to three attempts, and accepted or refused. The line that names
// an imaging device accepts it. The tracker passes an accepted device to the host, and the launcher
// then writes what it started, or why not.
//
// Trackers run on threads of their own, and a line does not show its thread. So a start line
// belongs to the device that it names, and a refusal of the launcher to the device that was
// accepted first, because devices are passed on one at a time. A start line that names no waiting
// device is an arrival of its own, because plugins write no line; unless the started program may
// have written it. A process that finds no application ends: at a start, or when a scan reads its
// settings, so also before the volume is decided.
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

    /// `teller` must outlive it.
    ProcessArrivals(std::uint32_t processId, const Tell& teller) : id(processId), devices(teller) {}

    [[nodiscard]] std::uint32_t Id() const noexcept { return id; }

    void Take(const SeenLine& line, const TraceEvent& event);

    /// It wrote a line with a component, so its start lines are the launcher's.
    void SetHasTheLibrary() noexcept { hasTheLibrary = true; }

    /// Shows the verdicts that have waited too long.
    void Tick(std::int64_t upMilliseconds) { devices.Tick(upMilliseconds); }

    /// Shows every verdict that is still open.
    void End();

    /// No device is open or known, and no line came for a long time.
    [[nodiscard]] bool IsOver(std::int64_t upMilliseconds) const noexcept;
    [[nodiscard]] std::size_t OpenCount() const noexcept { return devices.WaitingCount(); }

private:
    OpenDevice& Open(DeviceState state, const SeenLine& line, const char* tracker,
                     const TraceEvent& event);
    OpenDevice& OpenUnannounced(const SeenLine& line, const TraceEvent& event);
    /// The notice, unless it is too old for this line.
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
    std::vector<std::string> plugins; ///< the plugins that reported that they serve
    std::optional<TimeStamp> notice;  ///< the first of the notices that came together
    OpenDevices devices;
};

} // namespace kestraboot::tools
