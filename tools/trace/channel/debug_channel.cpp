#include "tools/trace/channel/debug_channel.h"

#include "tools/trace/channel/shared_object.h"

#include <cstring>
#include <utility>

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kSectionBytes = 4096; // fixed by Windows
constexpr DWORD kLongestTurn = 500;   // milliseconds
constexpr int kLooksAtAWriter = 2;    // before the writer counts as one that waits for a lost turn
constexpr int kOpeningAttempts = 20;
constexpr DWORD kPauseBetweenAttempts = 50; // milliseconds

} // namespace

struct DebugRecord {
    DWORD processId;
    char text[kSectionBytes - sizeof(DWORD)];
};
static_assert(sizeof(DebugRecord) == kSectionBytes);

DebugChannel::~DebugChannel()
{
    if (record != nullptr) {
        ::UnmapViewOfFile(record);
    }
}

DebugChannel::Opening DebugChannel::Open()
{
    for (int attempt = 1;; ++attempt) {
        const Opening opening = TryToOpen();
        if (opening != Opening::HeldByAnother || attempt == kOpeningAttempts) {
            return opening;
        }
        ::Sleep(kPauseBetweenAttempts);
    }
}

DebugChannel::Opening DebugChannel::TryToOpen()
{
    using Right = SharedObjectSecurity::Right;
    SharedObjectSecurity awaited(Right::Await);
    SharedObjectSecurity signalled(Right::Signal);
    SharedObjectSecurity written(Right::Write);
    SharedObjectSecurity held(Right::Hold);

    Handle turn(::CreateEventW(awaited.Get(), FALSE, FALSE, L"DBWIN_BUFFER_READY"));
    if (turn && ::GetLastError() == ERROR_ALREADY_EXISTS) {
        return Opening::HeldByAnother;
    }
    Handle lineWritten;
    Handle lineSection;
    if (turn) {
        lineWritten = Handle(::CreateEventW(signalled.Get(), FALSE, FALSE, L"DBWIN_DATA_READY"));
    }
    if (lineWritten) {
        lineSection = Handle(::CreateFileMappingW(INVALID_HANDLE_VALUE, written.Get(), PAGE_READWRITE, 0,
                                                  kSectionBytes, L"DBWIN_BUFFER"));
    }
    if (!lineSection) {
        // An object of a reader with more privileges cannot even be opened.
        return ::GetLastError() == ERROR_ACCESS_DENIED ? Opening::HeldByAnother : Opening::Failed;
    }
    record = static_cast<const DebugRecord*>(::MapViewOfFile(lineSection.Get(), FILE_MAP_READ, 0, 0, 0));
    if (record == nullptr) {
        return Opening::Failed;
    }
    // The writers' own mutex, which the first of them creates. Without it every silence counts as
    // one beside a writer.
    mutex = Handle(::CreateMutexExW(held.Get(), L"DBWinMutex", 0, SYNCHRONIZE));
    bufferReady = std::move(turn);
    dataReady = std::move(lineWritten);
    section = std::move(lineSection);
    ::SetEvent(bufferReady.Get());
    return Opening::Done;
}

DebugChannel::Waiting DebugChannel::Next(HANDLE stop, Line& line)
{
    const HANDLE events[] = {dataReady.Get(), stop}; // lines that are present come before the stop
    for (;;) {
        switch (::WaitForMultipleObjects(2, events, FALSE, kLongestTurn)) {
        case WAIT_OBJECT_0:
            Copy(line);
            return Waiting::Line;
        case WAIT_OBJECT_0 + 1:
            return Waiting::Stopped;
        case WAIT_TIMEOUT:
            LookAfterTurn();
            break;
        default:
            return Waiting::Failed;
        }
    }
}

void DebugChannel::Copy(Line& line)
{
    silentLooks = 0;
    if (std::exchange(mayBeTwoTurns, false)) {
        ::ResetEvent(bufferReady.Get());
    }
    line.processId = record->processId;
    line.text.assign(record->text, strnlen(record->text, sizeof record->text));
    ::SetEvent(bufferReady.Get());
}

void DebugChannel::LookAfterTurn()
{
    const DWORD taken = ::WaitForSingleObject(mutex.Get(), 0);
    if (taken == WAIT_OBJECT_0 || taken == WAIT_ABANDONED) {
        silentLooks = 0;
        if (::WaitForSingleObject(dataReady.Get(), 0) == WAIT_OBJECT_0) {
            ::SetEvent(dataReady.Get()); // a line came meanwhile: its turn is over when it is copied
        } else {
            ::SetEvent(bufferReady.Get());
        }
        ::ReleaseMutex(mutex.Get());
    } else if (++silentLooks >= kLooksAtAWriter) {
        ::SetEvent(bufferReady.Get());
        mayBeTwoTurns = true;
    }
}

} // namespace kestraboot::tools
