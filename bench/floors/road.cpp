#include "bench/floors/road.h"

#include "bench/floors/applications.h"
#include "bench/floors/drives.h"
#include "bench/floors/walk.h"

#include <windows.h>
#include <cstdint>
#include <process.h>

namespace kestraboot::bench
{
namespace
{

struct OneReport {
    OneReport() { ::InitializeCriticalSection(&section); }
    CRITICAL_SECTION section;
} oneReport;

void ReadFileSystem(const wchar_t* drive)
{
    wchar_t volumeName[260];
    wchar_t fileSystem[260];
    const UINT mode = ::SetErrorMode(SEM_FAILCRITICALERRORS);
    ::GetDriveTypeW(drive);
    ::GetVolumeInformationW(drive, volumeName, 260, nullptr, nullptr, nullptr, fileSystem, 260);
    ::SetErrorMode(mode);
}

void AskForCandidate(const wchar_t* drive)
{
    const UINT mode = ::SetErrorMode(SEM_FAILCRITICALERRORS);
    ::GetDriveTypeW(drive);
    ::SetErrorMode(mode);
}

void Start(const Road& road)
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    ::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version));
    const std::wstring quoted = L'"' + road.commandPath + L'"';
    const std::wstring device = L"priDevId=\"" + road.drive + L'"';
    const std::intptr_t process = ::_wspawnlp(
        _P_NOWAIT, road.commandPath.c_str(), quoted.c_str(), L"module=kestrafetch", L"params",
        L"mode=direct", L"devType=volume", device.c_str(), static_cast<const wchar_t*>(nullptr));
    ::CloseHandle(reinterpret_cast<HANDLE>(process));
    ::OutputDebugStringW(
        (quoted + L" module=kestrafetch params mode=direct devType=volume " + device).c_str());
}

} // namespace

void TravelRoad(const Road& road)
{
    LookAtDrives();
    ReadFileSystem(road.drive.c_str());
    ::OutputDebugStringW(
        (L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|" + road.drive + L'>').c_str());
    AskForCandidate(road.drive.c_str());
    MaintainOrder(road.proxyPath.c_str());
    ReadOwnPath();
    ReadUserNumber(road.applicationKey.c_str(), L"SniffDepth");
    TracedSearch(road.drive, 4, L"jpg");
    ::EnterCriticalSection(&oneReport.section);
    MaintainOrder(road.proxyPath.c_str());
    Start(road);
    ::LeaveCriticalSection(&oneReport.section);
}

} // namespace kestraboot::bench
