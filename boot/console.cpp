#include "boot/console.h"

#include <windows.h>
#include <cstdio>
#include <cwchar>

namespace
{

bool IsRedirected(DWORD fileType) noexcept
{
    return fileType == FILE_TYPE_DISK || fileType == FILE_TYPE_PIPE;
}

/// Detaches the stream from a console and redirects it to NUL. The stream is not closed: the next
/// file that anybody opens would get its number, and with it the printed text.
void TakeFromConsole(DWORD which, std::FILE* stream, const char* mode) noexcept
{
    // A character device is a console, NUL or a printer. Without a console they cannot be
    // distinguished, so all of them become NUL: nothing is printed here from now on.
    if (::GetFileType(::GetStdHandle(which)) == FILE_TYPE_CHAR) {
        static_cast<void>(std::freopen("NUL", mode, stream));
        ::SetStdHandle(which, nullptr); // last: some C runtimes set it to what was opened
    }
}

} // namespace

void JoinParentConsole() noexcept
{
    const DWORD output = ::GetFileType(::GetStdHandle(STD_OUTPUT_HANDLE));
    if (IsRedirected(output)) {
        return;
    }
    // Wine 8 also gives a program of the Windows subsystem its parent's console, and refuses a second
    // one.
    const bool joined =
        ::AttachConsole(ATTACH_PARENT_PROCESS) || ::GetLastError() == ERROR_ACCESS_DENIED;
    // The parent's console handle works from here on; handles of NUL and of a printer always work.
    if (joined && output != FILE_TYPE_CHAR) {
        // The library writes with the same C runtime, so this is its standard output too.
        static_cast<void>(std::freopen("CONOUT$", "w", stdout));
    }
}

void LeaveConsole() noexcept
{
    TakeFromConsole(STD_INPUT_HANDLE, stdin, "r");
    TakeFromConsole(STD_OUTPUT_HANDLE, stdout, "w");
    TakeFromConsole(STD_ERROR_HANDLE, stderr, "w");
    ::FreeConsole(); // fails if there is none
}

void Answer(const wchar_t* text) noexcept
{
    const bool redirected = IsRedirected(::GetFileType(::GetStdHandle(STD_OUTPUT_HANDLE)));
    JoinParentConsole();
    if (!redirected) {
        std::fputws(L"\n", stdout); // a shell does not wait: its next prompt is already on the line
    }
    std::fputws(text, stdout);
    std::fflush(stdout);
}

void ReportFailure(const wchar_t* line) noexcept
{
    ::OutputDebugStringW(line);
    Answer(line);
    std::fputws(L"\n", stdout);
    std::fflush(stdout);
}
