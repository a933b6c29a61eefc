// The debug output of this session.
//
// Windows passes a debug line to the owner of the section DBWIN_BUFFER. The writer takes the mutex
// DBWinMutex, waits for its turn (DBWIN_BUFFER_READY), fills the section (process identifier, then
// narrow text), sets DBWIN_DATA_READY and releases the mutex. A session has one reader at a time.
//
// A writer that is terminated between the two events takes its turn with it and blocks all others.
// So after a time without a line the reader gives the turn again, but never beside a writer that is
// in its turn: with two turns, the second writer overwrites the first one's line. While the reader
// holds the mutex, no writer is in its turn. If another process holds the mutex for a further time,
// that process is a writer that waits for the lost turn. Should it be one that was suspended in its
// turn after all, the reader withdraws the second turn when that writer's line comes.
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

    /// A writer may hold the objects of a previous reader open for a moment: the call waits for it.
    /// After Failed the system's last error is the reason.
    [[nodiscard]] Opening Open();

    enum class Waiting { Line, Stopped, Failed };

    /// Waits for the next line, or until `stop` is set. Releases the writer as soon as the line is
    /// copied.
    [[nodiscard]] Waiting Next(HANDLE stop, Line& line);

private:
    [[nodiscard]] Opening TryToOpen();
    void Copy(Line& line);
    void LookAfterTurn();

    Handle mutex;
    Handle bufferReady;
    Handle dataReady;
    Handle section;
    const DebugRecord* record = nullptr;
    int silentLooks = 0;        ///< consecutive checks at which a writer held the mutex
    bool mayBeTwoTurns = false; ///< one turn was given beside a writer
};

} // namespace kestraboot::tools
