#include "foundation/process_identity.h"

#include "foundation/handles.h"
#include "foundation/text.h"

#include <psapi.h>

namespace kestraboot
{

bool ReadExecutablePath(HANDLE process, std::wstring& path)
{
    // The first module is the main executable: room for one is enough.
    HMODULE mainModule = nullptr;
    DWORD bytesNeeded = 0;
    if (!::K32EnumProcessModules(process, &mainModule, sizeof(HMODULE), &bytesNeeded)) {
        return false;
    }
    wchar_t name[kFieldCapacity] = {};
    ::K32GetModuleFileNameExW(process, mainModule, name, kFieldCapacity - 1);
    path = name;
    return true;
}

void GetCurrentProcessInfo(ProcessInfo& info)
{
    const DWORD processId = ::GetCurrentProcessId();
    const UniqueKernelHandle process(::OpenProcess(PROCESS_ALL_ACCESS, FALSE, processId));
    if (!process) {
        return;
    }
    std::wstring path;
    if (!ReadExecutablePath(process.get(), path)) {
        path.clear();
    }
    info.processId = processId;
    info.handle = process.get();
    info.executablePath = std::move(path);
}

} // namespace kestraboot
