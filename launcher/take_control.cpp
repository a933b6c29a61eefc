// The claim to be the one boot executable in control.
#include "foundation/handles.h"
#include "foundation/process_identity.h"
#include "kestraboot/command_handler.h"

#include <cwchar>
#include <shlwapi.h>

using namespace kestraboot;

namespace
{

constexpr const wchar_t* kClaimName = L"Corvane Kestrafetch Boot";
constexpr const wchar_t* kOemFile = L".\\OEM\\album.ini";
constexpr DWORD kProfileCapacity = 261; // characters of the one buffer for the OEM file

/// Failures are not reported: the next steps then work in the folder that was current before.
void WorkInExecutableFolder()
{
    ProcessInfo self;
    GetCurrentProcessInfo(self);
    wchar_t folder[261] = {};
    std::wcsncpy(folder, self.executablePath.c_str(), 260);
    ::PathRemoveFileSpecW(folder);
    if (::PathIsDirectoryW(folder) && ::SetCurrentDirectoryW(folder)) {
        ::OutputDebugStringW(L"<KestraProxy><Current working directory is set.>");
    }
}

/// Whether the maker of the machine prevents the install: the first line of the section begins with
/// the number 1. A line "Stop=1" begins with no number and prevents nothing.
bool OemFileStopsInstall()
{
    if (!::PathFileExistsW(kOemFile)) {
        ::OutputDebugStringW(L"<KestraProxy:OEM><OEM initialization file not found.>");
        return false;
    }
    ::OutputDebugStringW(L"<KestraProxy:OEM><OEM initialization file found.>");

    wchar_t profile[kProfileCapacity] = {};
    // Reads the names of the sections; the result is not used.
    static_cast<void>(
        ::GetPrivateProfileStringW(nullptr, nullptr, nullptr, profile, kProfileCapacity, kOemFile));
    const DWORD length =
        ::GetPrivateProfileSectionW(L"KestraProxyStopInstall", profile, kProfileCapacity - 1, kOemFile);
    if (length == 0) {
        return false;
    }
    ::OutputDebugStringW(L"<KestraProxy:OEM><KestraProxyStopInstall option found.>");
    profile[kProfileCapacity - 1] = L'\0';
    if (::_wtoi(profile) != 1) {
        return false;
    }
    ::OutputDebugStringW(L"<KestraProxy:OEM><Stopping KestraProxy install.>");
    return true;
}

} // namespace

bool CKestraBootCommandHandler::TakeControl()
{
    const HANDLE created = ::CreateMutexW(nullptr, FALSE, kClaimName);
    const DWORD error = ::GetLastError();
    if (created == nullptr || error == ERROR_ALREADY_EXISTS) {
        ::CloseHandle(created);
        ::OutputDebugStringW(L"<KestraProxy><Any other KestraProxy is running.>");
        StopVel3AutoLaunch();
        return false;
    }
    UniqueKernelHandle claim(created);
    ::OutputDebugStringW(L"<KestraProxy><Took control of the situation>");
    WorkInExecutableFolder();
    if (OemFileStopsInstall()) {
        return false; // the claim is closed and free for another
    }
    StopVel3AutoLaunch();
    static_cast<void>(claim.release()); // stays open for the life of the process: it is the claim
    return true;
}
