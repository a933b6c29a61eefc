#include "tools/trace/debug_channel.h"

#include <cstring>

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kSectionBytes = 4096; // fixed by Windows
constexpr DWORD kLongestTurn = 500;   // milliseconds
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
        bufferReady = Handle(::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY"));
        if (!bufferReady || ::GetLastError() != ERROR_ALREADY_EXISTS) {
            break;
        }
        bufferReady = Handle();
        if (attempt == kOpeningAttempts) {
            return Opening::HeldByAnother;
        }
        ::Sleep(kPauseBetweenAttempts);
    }
    dataReady = Handle(::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"));
    section = Handle(::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                          kSectionBytes, L"DBWIN_BUFFER"));
    if (!bufferReady || !dataReady || !section) {
        return Opening::Failed;
    }
    record = static_cast<const DebugRecord*>(::MapViewOfFile(section.Get(), FILE_MAP_READ, 0, 0, 0));
    if (record == nullptr) {
        return Opening::Failed;
    }
    ::SetEvent(bufferReady.Get());
    return Opening::Done;
}

DebugChannel::Waiting DebugChannel::Next(HANDLE stop, Line& line)
{
    const HANDLE events[] = {dataReady.Get(), stop}; // lines that are there go before the stop
    for (;;) {
        switch (::WaitForMultipleObjects(2, events, FALSE, kLongestTurn)) {
        case WAIT_OBJECT_0:
            line.processId = record->processId;
            line.text.assign(record->text, strnlen(record->text, sizeof record->text));
            ::SetEvent(bufferReady.Get());
            return Waiting::Line;
        case WAIT_OBJECT_0 + 1:
            return Waiting::Stopped;
        case WAIT_TIMEOUT:
            ::SetEvent(bufferReady.Get());
            break;
        default:
            return Waiting::Failed;
        }
    }
}

} // namespace kestraboot::tools
