#include "bench/road_row.h"

#include "bench/application.h"
#include "bench/card.h"
#include "bench/contest.h"
#include "bench/floors/road.h"
#include "bench/scene.h"
#include "kestraboot/command_handler.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "tests/support/import_patch.h"
#include "trackers/volume/volume_scan.h"

#include <cstdint>
#include <stdexcept>

namespace kestraboot::bench
{
namespace
{

int launches = 0;

/// The boot program's reaction to an arrival.
void LaunchForDevice(std::wstring& kind, std::wstring& deviceId)
{
    CKestraBootCommandHandler handler;
    handler.LaunchDefaultKestra(kind, deviceId);
    ++launches;
}

void AwaitEndOfApplication()
{
    while (const HANDLE running = ::OpenMutexW(SYNCHRONIZE, FALSE, kRunningMutex)) {
        ::CloseHandle(running);
        ::Sleep(1);
    }
}

std::intptr_t StartAtOnce(int, const wchar_t*, const wchar_t*, ...) noexcept
{
    return reinterpret_cast<std::intptr_t>(
        ::CreateEventW(nullptr, FALSE, FALSE, nullptr)); // to be closed
}

void CompeteOnRoadUntil(const Request& request, void (*applicationRuns)())
{
    const Card card(L'E', request.card);
    const Scene scene(1, 0, BesideThisProgram(L"bench_application.exe"));
    const Road road = {card.Drive(), scene.FirstKey(), scene.ProxyPath(),
                       BesideThisProgram(L"bench_application.exe")};
    InitializeDispatch();
    RegisterDeviceConnectCallback(LaunchForDevice);

    DriveWatch watch;
    VolumeScan scan(watch);
    const auto putCardInAgain = [&] {
        AwaitEndOfApplication();
        card.TakeOut();
        scan.Scan(); // the tracker detects the removal
        card.Insert();
    };
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  const int before = launches;
                  scan.Scan();
                  if (launches != before + 1) {
                      throw std::logic_error("the card was not reported");
                  }
                  applicationRuns();
              },
              putCardInAgain},
             {"floor", 1.10,
              [&] {
                  TravelRoad(road);
                  applicationRuns();
              },
              putCardInAgain}});
}

} // namespace

void CompeteOnRoad(const Request& request)
{
    static const HANDLE started = ::CreateEventW(nullptr, FALSE, FALSE, kStartedEvent);
    CompeteOnRoadUntil(request, [] {
        if (::WaitForSingleObject(started, 30'000) != WAIT_OBJECT_0) {
            throw std::runtime_error("the application does not start");
        }
    });
}

void CompeteOnRoadWithoutStart(const Request& request)
{
    const tests::ImportPatch start("_wspawnlp", StartAtOnce);
    CompeteOnRoadUntil(request, [] {});
}

} // namespace kestraboot::bench
