// hanging.mox: a library whose loading never ends, as from a drive that stopped answering. All that time
// its thread holds what Windows' loader needs. It says that it is loaded: "<hanging.mox is loaded>".
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID);

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        ::OutputDebugStringW(L"<hanging.mox is loaded>");
        ::Sleep(INFINITE);
    }
    return TRUE;
}
