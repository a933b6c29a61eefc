// The cost of a debug-output reader for the programs that write lines. bench/trace_price.py runs it.
//
//   bench_trace floor        the least work of a reader, without end: copies a line, signals, drops it
//   bench_trace write LINES  waits for a reader, writes the lines of a card's search, and prints the
//                            milliseconds
#include <windows.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace
{

constexpr DWORD kSectionBytes = 4096; // fixed by Windows

int ReadAndDrop()
{
    static char kept[kSectionBytes];
    const HANDLE turn = ::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY");
    const HANDLE written = ::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY");
    const HANDLE section = ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                kSectionBytes, L"DBWIN_BUFFER");
    const auto* const record =
        static_cast<const char*>(::MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0));
    if (turn == nullptr || written == nullptr || record == nullptr) {
        return EXIT_FAILURE;
    }
    ::SetEvent(turn);
    while (::WaitForSingleObject(written, INFINITE) == WAIT_OBJECT_0) {
        std::memcpy(kept, record,
                    sizeof(DWORD) + strnlen(record + sizeof(DWORD), kSectionBytes - sizeof(DWORD)));
        ::SetEvent(turn);
    }
    return EXIT_FAILURE;
}

int Write(int lines)
{
    HANDLE section = nullptr;
    while ((section = ::OpenFileMappingW(FILE_MAP_READ, FALSE, L"DBWIN_BUFFER")) == nullptr) {
        ::Sleep(10);
    }
    ::CloseHandle(section);
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>");
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < lines; ++i) {
        wchar_t line[128];
        std::swprintf(line, 128, L"<***DeviceConnect***><3><FILE><IMG_%05d.TXT>\n", i);
        ::OutputDebugStringW(line);
    }
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
    ::OutputDebugStringW(L"<***DeviceConnect***><Supported file format is found on device.>");
    std::printf("%.1f\n", taken.count());
    return EXIT_SUCCESS;
}

} // namespace

int main(int count, char** words)
{
    const std::string_view mode = count > 1 ? words[1] : "";
    if (mode == "floor") {
        return ReadAndDrop();
    }
    return mode == "write" && count == 3 ? Write(std::atoi(words[2])) : EXIT_FAILURE;
}
