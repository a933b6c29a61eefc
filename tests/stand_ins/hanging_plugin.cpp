// hanging.mox: a library whose loading never ends, as from a drive that stopped answering. Its thread
// holds Windows' loader lock all that time. It writes "<hanging.mox is loaded>" when it is loaded.
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
