#include "service/console_session.h"

#include "foundation/handles.h"

namespace kestraboot
{

bool IsProcessInActiveConsoleSession(std::uint32_t processId) noexcept
{
    // Looked up at run time: Windows 2000 has no such export, and the library must load there.
    const UniqueModule kernel(::LoadLibraryW(L"kernel32.dll"));
    if (!kernel) {
        return false;
    }
    using GetSessionId = DWORD(WINAPI*)();
    const FARPROC entry = ::GetProcAddress(kernel.get(), "WTSGetActiveConsoleSessionId");
    if (entry == nullptr) {
        return false;
    }
    const DWORD consoleSession = reinterpret_cast<GetSessionId>(reinterpret_cast<void*>(entry))();
    DWORD processSession = 0;
    return ::ProcessIdToSessionId(processId, &processSession) && processSession == consoleSession;
}

} // namespace kestraboot
