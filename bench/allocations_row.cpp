#include "bench/allocations_row.h"

#include "bench/card.h"
#include "bench/scene.h"
#include "bench/silenced.h"
#include "foundation/trace.h"
#include "kestraboot/command_handler.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "service/media_walk.h"
#include "tests/support/allocation_count.h"
#include "tests/support/import_patch.h"
#include "trackers/volume/volume_scan.h"

#include <cstdint>
#include <cstdio>

namespace kestraboot::bench
{
namespace
{

using tests::AllocationsOf;

/// `most` is the goal; empty if the row has none.
void Print(const char* what, double number, const char* most = "0")
{
    std::printf("allocations,\"%s\",%g,%s\n", what, number, most);
}

long AllocationsOfLoading(int applications)
{
    const Scene scene(applications, 0, BesideThisProgram(L"bench_application.exe"));
    CKestraBootInformationHandler handler;
    handler.LoadInformation();
    return AllocationsOf([&] {
        handler.LoadInformation();
    });
}

} // namespace

void CountAllocations(const Request& request)
{
    const Card card(L'E', request.card);
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    Print("an idle poll", static_cast<double>(AllocationsOf([&] {
              scan.Scan();
          })));

    const ExtensionSet none(std::vector<formatInfo_tag>{});
    Print("media walk of 10,000 files in 103 folders", static_cast<double>(AllocationsOf([&] {
              static_cast<void>(FindSupportedFile(card.Drive().c_str(), 4, none));
          })),
          "");
    Print("a trace line", static_cast<double>(AllocationsOf([] {
              TraceBuffer line = {};
              FormatTraceLine(line, L"<***DeviceConnect***><%d><%ls><%ls>\n", 1, L"FILE",
                              L"IMG_0001.JPG");
          })));

    InitializeDispatch();
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {});
    std::wstring kind = L"volume";
    std::wstring deviceId = L"E:";
    Print("a dispatch", static_cast<double>(AllocationsOf([&] {
              NotifyDeviceConnect(kind, deviceId);
          })));

    const tests::ImportPatch start("_wspawnlp", StartNothing);
    CKestraBootCommandHandler handler;
    std::wstring path = L"C:\\Program Files\\Picture Organiser\\organiser.exe";
    std::wstring mode = L"direct";
    Print("a launch", static_cast<double>(AllocationsOf([&] {
              handler.LaunchKestra(path, mode, kind, deviceId);
          })));

    constexpr int kMore = 64;
    Print("an application loaded (16 formats), on average",
          static_cast<double>(AllocationsOfLoading(2 * kMore) - AllocationsOfLoading(kMore)) / kMore,
          "16");
}

} // namespace kestraboot::bench
