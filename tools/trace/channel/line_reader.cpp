#include "tools/trace/channel/line_reader.h"

#include "tools/common/utf8.h"
#include "tools/trace/channel/process_names.h"
#include "tools/trace/lines/system_time.h"

#include <exception>
#include <utility>

namespace kestraboot::tools
{
namespace
{

std::string FromAnsi(const std::string& text)
{
    std::wstring wide(text.size(), L'\0'); // never more characters than bytes
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                             wide.data(), static_cast<int>(wide.size()));
    return ToUtf8(std::wstring_view(wide).substr(0, static_cast<std::size_t>(length)));
}

} // namespace

LineReader::LineReader(DebugChannel& opened, LineQueue& filled, HANDLE stopEvent)
    : channel(opened), queue(filled), stop(stopEvent), thread([this] {
          Read();
      })
{
}

LineReader::~LineReader()
{
    ::SetEvent(stop);
    thread.join();
}

void LineReader::Read() noexcept
{
    try {
        ReadLines();
    } catch (const std::exception&) {
        failed = true; // memory ran out
    }
    queue.Close();
}

void LineReader::ReadLines()
{
    ProcessNames names;
    DebugChannel::Line line;
    for (;;) {
        const DebugChannel::Waiting came = channel.Next(stop, line);
        if (came != DebugChannel::Waiting::Line) {
            failed = came == DebugChannel::Waiting::Failed;
            return;
        }
        const TimeStamp now = Now();
        queue.Push({now, line.processId, names.Of(line.processId), FromAnsi(line.text)});
    }
}

} // namespace kestraboot::tools
