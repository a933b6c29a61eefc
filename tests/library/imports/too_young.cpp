// A library that Vista's loader refuses: the check of imports must report it.
#include <windows.h>

extern "C" __declspec(dllexport) void Refused()
{
    FILETIME now = {};
    ::GetSystemTimePreciseAsFileTime(&now); // in the table, from Windows 8 on
    ::SetProcessWorkingSetSize(::GetCurrentProcess(), now.dwLowDateTime, now.dwLowDateTime); // not in it
}
