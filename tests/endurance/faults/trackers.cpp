#include "tests/endurance/faults/trackers.h"

#include "kestraboot/device_connect.h"
#include "tests/endurance/faults/journal.h"

namespace kestraboot::tests
{
namespace
{

constexpr int kTrackers = 4;
LPTHREAD_START_ROUTINE entries[kTrackers];
int started = 0;
bool isStart = false;

HANDLE Create(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE entry, void* argument, DWORD, DWORD*)
{
    if (isStart) {
        Journal::Add(L"starts a tracker");
        if (started < kTrackers) {
            entries[started++] = entry;
        }
    } else {
        entry(argument);
    }
    return reinterpret_cast<HANDLE>(0x4'0000); // never closed
}

void Report(std::wstring& kind, std::wstring& deviceId)
{
    Journal::Add(L"REPORTS", kind.c_str());
    Journal::Add(L"  named", deviceId.c_str());
}

} // namespace

Trackers::Trackers() : create("CreateThread", Create)
{
    started = 0;
    StartService();
    RegisterDeviceConnectCallback(Report);
}

Trackers::~Trackers()
{
    RegisterDeviceConnectCallback(nullptr);
}

void Trackers::Run(Tracker tracker)
{
    entries[static_cast<int>(tracker)](nullptr);
}

void StartService()
{
    isStart = true;
    StartDeviceConnectService();
    isStart = false;
}

} // namespace kestraboot::tests
