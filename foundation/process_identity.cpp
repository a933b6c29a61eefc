#include "foundation/process_identity.h"

#include "foundation/handles.h"
#include "foundation/text.h"

namespace kestraboot
{
namespace
{

template <typename Function>
Function Find(HMODULE library, const char* name) noexcept
{
    // Without a library the program itself would be searched.
    const FARPROC entry = library != nullptr ? ::GetProcAddress(library, name) : nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(entry));
}

/// Windows' functions for the modules of a process. They are looked up at run time: kernel32 has
/// them from Windows 7 on, and the library must load on Vista too, where psapi.dll has them under
/// older names.
class ModuleQueries
{
public:
    ModuleQueries() noexcept
    {
        const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
        FindIn(kernel, "K32EnumProcessModules", "K32GetModuleFileNameExW");
        if (!*this) {
            psapi.reset(::LoadLibraryW(L"psapi.dll"));
            FindIn(psapi.get(), "EnumProcessModules", "GetModuleFileNameExW");
        }
    }

    explicit operator bool() const noexcept { return enumerate != nullptr && readName != nullptr; }

    BOOL(WINAPI* enumerate)(HANDLE process, HMODULE* modules, DWORD room, DWORD* needed) = nullptr;
    DWORD(WINAPI* readName)(HANDLE process, HMODULE module, wchar_t* name, DWORD room) = nullptr;

private:
    void FindIn(HMODULE library, const char* enumerateName, const char* readNameName) noexcept
    {
        enumerate = Find<decltype(enumerate)>(library, enumerateName);
        readName = Find<decltype(readName)>(library, readNameName);
    }

    UniqueModule psapi;
};

} // namespace

bool ReadExecutablePath(HANDLE process, std::wstring& path)
{
    const ModuleQueries modules;
    // The first module is the main executable: room for one is enough.
    HMODULE mainModule = nullptr;
    DWORD bytesNeeded = 0;
    if (!modules || !modules.enumerate(process, &mainModule, sizeof(HMODULE), &bytesNeeded)) {
        return false;
    }
    wchar_t name[kFieldCapacity] = {};
    modules.readName(process, mainModule, name, kFieldCapacity - 1);
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
