#include "no_boxes.h"

namespace
{

void SetModeOfThisThread(DWORD mode, DWORD* before) noexcept
{
    const FARPROC found = ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "SetThreadErrorMode");
    if (found != nullptr) {
        reinterpret_cast<BOOL(WINAPI*)(DWORD, DWORD*)>(reinterpret_cast<void*>(found))(mode, before);
    }
}

} // namespace

NoBoxes::NoBoxes() noexcept
{
    SetModeOfThisThread(SEM_FAILCRITICALERRORS, &before);
}

NoBoxes::~NoBoxes()
{
    SetModeOfThisThread(before, nullptr);
}
