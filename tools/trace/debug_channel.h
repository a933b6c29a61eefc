// The debug output of this session.
//
// Windows hands a debug line to whoever owns the section DBWIN_BUFFER: the writer waits for
// DBWIN_BUFFER_READY, fills the section (process identifier, then narrow text), and sets
// DBWIN_DATA_READY. There can be one reader in a session at a time. A writer that is ended between the
// two would keep all others out for good: after a while without a line its turn is given to the next
// one.
#pragma once

#include "tools/common/handle.h"

#include <windows.h>
#include <cstdint>
#include <string>

namespace kestraboot::tools
{

struct DebugRecord;

class DebugChannel
{
public:
    enum class Opening { Done, HeldByAnother, Failed };

    struct Line {
        std::uint32_t processId = 0;
        std::string text; ///< in the ANSI code page
    };

    DebugChannel() = default;
    DebugChannel(const DebugChannel&) = delete;
    DebugChannel& operator=(const DebugChannel&) = delete;
    ~DebugChannel();

    /// A reader that has just gone may be held open by a writer for a moment: it is waited for. For
    /// Failed the system's last error says why.
    [[nodiscard]] Opening Open();

    enum class Waiting { Line, Stopped, Failed };

    /// Waits for the next line, or until `stop` is set. Writers are let on as soon as it is copied.
    [[nodiscard]] Waiting Next(HANDLE stop, Line& line);

private:
    [[nodiscard]] Opening TryToOpen();

    Handle bufferReady;
    Handle dataReady;
    Handle section;
    const DebugRecord* record = nullptr;
};

} // namespace kestraboot::tools
