// kestratrace: shows the trace lines of every process of this session as they come, each with the
// seconds since the start and the process that wrote it. Runs until Ctrl+C, or for the seconds given as
// its argument.
//
// Windows hands a debug line to whoever owns the section DBWIN_BUFFER: the writer waits for
// DBWIN_BUFFER_READY, fills the section (process identifier, then narrow text), and sets
// DBWIN_DATA_READY. There can be one reader in a session at a time. A writer that is ended between the
// two would keep all others out for good: after a while without a line its turn is given to the next
// one.
#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr DWORD kSectionBytes = 4096; // fixed by Windows
constexpr DWORD kLongestTurn = 500;   // milliseconds

struct DebugRecord {
    DWORD processId;
    char text[kSectionBytes - sizeof(DWORD)];
};
static_assert(sizeof(DebugRecord) == kSectionBytes);

int Fail(const char* what)
{
    std::fprintf(stderr, "kestratrace: cannot %s (error %lu)\n", what, ::GetLastError());
    return 1;
}

void Show(const DebugRecord& record, ULONGLONG started)
{
    const std::size_t length = strnlen(record.text, sizeof record.text);
    const bool lineEnd = length > 0 && record.text[length - 1] == '\n';
    std::printf("%8.3f  %5lu  %.*s%s", static_cast<double>(::GetTickCount64() - started) / 1000.0,
                record.processId, static_cast<int>(length), record.text, lineEnd ? "" : "\n");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const ULONGLONG started = ::GetTickCount64();
    ULONGLONG lifetime = 0; // 0: for ever
    if (argc == 2) {
        char* end = nullptr;
        lifetime = std::strtoul(argv[1], &end, 10) * 1000ULL;
        if (*end != '\0' || lifetime == 0) {
            std::fputs("usage: kestratrace [seconds]\n", stderr);
            return 2;
        }
    } else if (argc > 2) {
        std::fputs("usage: kestratrace [seconds]\n", stderr);
        return 2;
    }

    // The system closes these with the process.
    const HANDLE bufferReady = ::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY");
    if (bufferReady != nullptr && ::GetLastError() == ERROR_ALREADY_EXISTS) {
        std::fputs("kestratrace: another reader of debug output is running\n", stderr);
        return 1;
    }
    const HANDLE dataReady = ::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY");
    const HANDLE section = ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                kSectionBytes, L"DBWIN_BUFFER");
    if (bufferReady == nullptr || dataReady == nullptr || section == nullptr) {
        return Fail("make the debug output section");
    }
    const auto* const record =
        static_cast<const DebugRecord*>(::MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0));
    if (record == nullptr) {
        return Fail("map the debug output section");
    }

    for (::SetEvent(bufferReady);; ::SetEvent(bufferReady)) {
        DWORD wait = kLongestTurn;
        if (lifetime != 0) {
            const ULONGLONG passed = ::GetTickCount64() - started;
            if (passed >= lifetime) {
                return 0;
            }
            wait = static_cast<DWORD>(std::min<ULONGLONG>(wait, lifetime - passed));
        }
        switch (::WaitForSingleObject(dataReady, wait)) {
        case WAIT_OBJECT_0:
            Show(*record, started);
            break;
        case WAIT_TIMEOUT:
            break;
        default:
            return Fail("wait for debug output");
        }
    }
}
