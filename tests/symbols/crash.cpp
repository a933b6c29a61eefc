// A host that crashes inside the library as a customer's may, and prints the place like a crash report:
// the module and the offset in it.
#include "kestraboot/kestraboot.h"

#include <windows.h>
#include <cstdint>
#include <cstdio>
#include <string>

namespace
{

LONG WINAPI Report(EXCEPTION_POINTERS* exception)
{
    const auto address = reinterpret_cast<std::uintptr_t>(exception->ExceptionRecord->ExceptionAddress);
    const auto base = reinterpret_cast<std::uintptr_t>(::GetModuleHandleW(L"kestraboot.dll"));
    std::printf("%08lX kestraboot.dll+0x%llx\n", exception->ExceptionRecord->ExceptionCode,
                static_cast<unsigned long long>(address - base));
    static_cast<void>(std::fflush(stdout));
    ::ExitProcess(0);
}

} // namespace

int main()
{
    ::SetUnhandledExceptionFilter(Report);
    std::wstring text = L"text";
    // The mode is read first, and is at an address that no process has.
    std::wstring& unreadable = *reinterpret_cast<std::wstring*>(std::uintptr_t{0x1000});
    CKestraBootCommandHandler().LaunchKestra(text, unreadable, text, text);
    return 1;
}
