// A DLL that does at load time what the library must do then: one look at the drives.
#include "bench/floors/drives.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID); // no header has it

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        kestraboot::bench::LookAtDrives();
    }
    return TRUE;
}
