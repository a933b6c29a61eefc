#include "tests/system/debug_reader.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kSectionBytes = 4096; // fixed by Windows
constexpr DWORD kLongestTurn = 500;   // milliseconds

struct DebugRecord {
    DWORD processId;
    char text[kSectionBytes - sizeof(DWORD)];
};

} // namespace

DebugReader::DebugReader()
    : bufferReady(::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY")),
      dataReady(::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")),
      section(::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSectionBytes,
                                   L"DBWIN_BUFFER")),
      stop(::CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    if (bufferReady == nullptr || dataReady == nullptr || section == nullptr || stop == nullptr) {
        throw std::runtime_error("the debug output section cannot be made");
    }
    reader = std::thread([this] {
        Read();
    });
}

DebugReader::~DebugReader()
{
    ::SetEvent(stop);
    reader.join();
    for (const HANDLE handle : {bufferReady, dataReady, section, stop}) {
        ::CloseHandle(handle);
    }
}

void DebugReader::Read()
{
    const auto* const record =
        static_cast<const DebugRecord*>(::MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0));
    const HANDLE events[] = {dataReady, stop};
    for (;;) {
        ::SetEvent(bufferReady);
        const DWORD woken = ::WaitForMultipleObjects(2, events, FALSE, kLongestTurn);
        if (woken == WAIT_TIMEOUT) {
            continue; // a writer that was ended in its turn would keep all others out
        }
        if (woken != WAIT_OBJECT_0) {
            break;
        }
        const std::lock_guard lock(mutex);
        lines.push_back(
            {record->processId, std::string(record->text, strnlen(record->text, sizeof record->text))});
    }
    ::UnmapViewOfFile(record);
}

void DebugReader::CatchUp() const
{
    // Writers take turns: once a line of our own is here, all that were written before it are.
    static std::atomic<int> number = 0;
    const std::string marker = "caught up " + std::to_string(++number);
    for (int attempt = 0; attempt < 10; ++attempt) {
        ::OutputDebugStringA(marker.c_str()); // a writer gives its line up when its turn does not come
        for (const ULONGLONG end = ::GetTickCount64() + 2'000; ::GetTickCount64() < end; ::Sleep(1)) {
            if (CountSoFar(marker) != 0) {
                return;
            }
        }
    }
}

std::vector<std::string> DebugReader::LinesOf(DWORD processId) const
{
    CatchUp();
    const std::lock_guard lock(mutex);
    std::vector<std::string> found;
    for (const Line& line : lines) {
        if (line.processId == processId) {
            found.push_back(line.text);
        }
    }
    return found;
}

int DebugReader::Count(const std::string& line) const
{
    CatchUp();
    return CountSoFar(line);
}

int DebugReader::CountSoFar(const std::string& line) const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(std::ranges::count(lines, line, &Line::text));
}

bool DebugReader::Await(const std::string& line, DWORD milliseconds) const
{
    for (const ULONGLONG end = ::GetTickCount64() + milliseconds; CountSoFar(line) == 0;) {
        if (::GetTickCount64() > end) {
            return false;
        }
        ::Sleep(5);
    }
    return true;
}

void DebugReader::Clear()
{
    const std::lock_guard lock(mutex);
    lines.clear();
}

} // namespace kestraboot::tests
