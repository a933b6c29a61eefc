#include "tools/trace/read_back.h"

#include "tools/common/utf8.h"
#include "tools/trace/lines/ansi_text.h"
#include "tools/trace/lines/system_time.h"
#include "tools/trace/recording/progress.h"
#include "tools/trace/recording/recorded_lines.h"
#include "tools/trace/recording/recording_file.h"
#include "tools/trace/recording/text_lines.h"
#include "tools/trace/system_error.h"
#include "tools/trace/viewer.h"

#include <cstdio>
#include <string>
#include <variant>

namespace kestraboot::tools
{
namespace
{

/// Passes one recording to the viewer.
class ReadBack
{
public:
    ReadBack(const std::wstring& path, Viewer& shown) : name(ToUtf8(path)), viewer(shown), file(path) {}

    /// False if it cannot be read; standard error has the reason.
    bool Show(const Stop& stop)
    {
        if (!file.IsOpen()) {
            TellSystemError("open " + name);
            return false;
        }
        const std::optional<std::int64_t> lastDay = file.LastDay();
        if (!lastDay) {
            TellSystemError("read the time of " + name);
            return false;
        }
        RecordedLines recorded(*lastDay, OffsetMinutesAt);
        TextLines lines(
            [&](std::string_view line) {
                Take(recorded, line);
            },
            FromAnsi);
        Progress progress(name, file.Size());
        while (!stop.Asked() && viewer.Useful()) {
            const std::optional<std::string_view> some = file.Read();
            if (!some) {
                TellSystemError("read " + name);
                return false;
            }
            if (some->empty()) {
                endedInALine = lines.End();
                break;
            }
            lines.Push(*some);
            progress.Tell(file.Position());
        }
        TellWhatWasNotShown();
        return true;
    }

private:
    void Take(RecordedLines& recorded, std::string_view line)
    {
        lastWasRecorded = true;
        const RecordedLine read = recorded.Read(line);
        if (const auto* const seen = std::get_if<SeenLine>(&read)) {
            viewer.Take(*seen);
        } else if (const auto* const loss = std::get_if<RecordedLoss>(&read)) {
            viewer.TakeLost(loss->time, loss->lines);
        } else if (std::holds_alternative<NotRecorded>(read) && !line.empty()) {
            ++foreign;
            lastWasRecorded = false;
        }
    }

    void TellWhatWasNotShown() const
    {
        if (foreign != 0) {
            std::fprintf(stderr, "kestratrace: %s: %llu lines are no viewer's and are left out\n",
                         name.c_str(), static_cast<unsigned long long>(foreign));
        }
        if (endedInALine) {
            std::fprintf(stderr, "kestratrace: %s ends in the middle of a line, which is %s\n",
                         name.c_str(), lastWasRecorded ? "shown as far as it goes" : "left out");
        }
    }

    const std::string name;
    Viewer& viewer;
    RecordingFile file;
    std::uint64_t foreign = 0;
    bool lastWasRecorded = true;
    bool endedInALine = false;
};

} // namespace

ExitCode ShowRecordings(const TraceOptions& options, const Stop& stop)
{
    Viewer viewer(options);
    if (!viewer.OpenFile()) {
        return ExitCode::Failed;
    }
    bool read = true;
    for (const std::wstring& path : options.from) {
        read = ReadBack(path, viewer).Show(stop) && read;
    }
    const ExitCode shown = viewer.End();
    return read ? shown : ExitCode::Failed;
}

} // namespace kestraboot::tools
