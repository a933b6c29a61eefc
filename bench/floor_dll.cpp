// A DLL that does the library's unavoidable work at load time: one scan of the drives.
#include "bench/floors/drives.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID); // no header declares it

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        kestraboot::bench::LookAtDrives();
    }
    return TRUE;
}
