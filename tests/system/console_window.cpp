#include "tests/system/console_window.h"

#include <algorithm>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

HANDLE pressed = nullptr; // an event of the one console

BOOL WINAPI LiveOn(DWORD) noexcept
{
    ::SetEvent(pressed);
    return TRUE;
}

} // namespace

ConsoleWindow::ConsoleWindow()
{
    pressed = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ::FreeConsole();
    if (!::AllocConsole()) {
        throw std::runtime_error("no console: error " + std::to_string(::GetLastError()));
    }
    screen = ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_EXISTING, 0, nullptr);
    ::SetConsoleCtrlHandler(LiveOn, TRUE);
    DWORD written = 0;
    ::WriteConsoleW(screen, L"C:\\>", 4, &written, nullptr);
}

ConsoleWindow::~ConsoleWindow()
{
    ::CloseHandle(screen);
    ::FreeConsole();
    ::SetConsoleCtrlHandler(LiveOn, FALSE);
    ::CloseHandle(pressed);
}

std::string ConsoleWindow::Text() const
{
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    ::GetConsoleScreenBufferInfo(screen, &info);
    std::string text;
    for (SHORT row = 0; row <= info.dwCursorPosition.Y; ++row) {
        std::wstring line(static_cast<std::size_t>(info.dwSize.X), L' ');
        DWORD read = 0;
        ::ReadConsoleOutputCharacterW(screen, line.data(), static_cast<DWORD>(line.size()), {0, row},
                                      &read);
        line.resize(line.find_last_not_of(L' ') + 1);
        text.append(line.begin(), line.end());
        text += row < info.dwCursorPosition.Y ? "\n" : "";
    }
    return text;
}

bool ConsoleWindow::Has(DWORD processId)
{
    std::vector<DWORD> processes(64);
    processes.resize(::GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())));
    return std::ranges::find(processes, processId) != processes.end();
}

bool ConsoleWindow::PressCtrlC() const
{
    return ::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) &&
           ::WaitForSingleObject(pressed, 30'000) == WAIT_OBJECT_0;
}

} // namespace kestraboot::tests
