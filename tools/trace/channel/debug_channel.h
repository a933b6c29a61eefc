// The debug output of this session.
//
// Windows hands a debug line to whoever owns the section DBWIN_BUFFER: the writer takes the mutex
// DBWinMutex, waits for its turn, DBWIN_BUFFER_READY, fills the section (process identifier, then narrow
// text), sets DBWIN_DATA_READY and releases the mutex. There can be one reader in a session at a time.
//
// A writer that is ended between the two events takes its turn with it and keeps all others out. So
// after a while without a line the turn is given again, but never beside a writer that is in its own:
// with two turns about, the second writer overwrites what the first one wrote. While the reader holds
// the mutex no writer is in its turn. A mutex that stays taken for another while is held by a writer
// that waits for the lost turn; should it be one that was stopped in its own after all, the turn that
// was given beside it is withdrawn when its line comes.
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
    void Copy(Line& line);
    void LookAfterTurn();

    Handle mutex;
    Handle bufferReady;
    Handle dataReady;
    Handle section;
    const DebugRecord* record = nullptr;
    int silentLooks = 0;        ///< one behind the other at which a writer held the mutex
    bool mayBeTwoTurns = false; ///< one was given beside a writer
};

} // namespace kestraboot::tools
