#include "bench/dispatch_row.h"

#include "bench/contest.h"
#include "bench/floors/dispatch.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

#include <thread>
#include <vector>

namespace kestraboot::bench
{
namespace
{

constexpr int kReports = 20'000; // of one thread, in one piece of work

volatile std::size_t seen = 0;

void Callback(std::wstring& kind, std::wstring& deviceId)
{
    seen = kind.size() + deviceId.size();
}

template <typename Notify>
void ReportFrom(int threads, Notify notify)
{
    const auto work = [notify] {
        std::wstring kind = L"volume";
        std::wstring deviceId = L"E:";
        for (int i = 0; i < kReports; ++i) {
            notify(kind, deviceId);
        }
    };
    if (threads == 1) {
        work();
        return;
    }
    std::vector<std::jthread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back(work);
    }
}

} // namespace

void CompeteInDispatch(const Request& request)
{
    const int threads = request.Number();
    InitializeDispatch();
    RegisterDeviceConnectCallback(Callback);
    PrepareReports(Callback);
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [=] {
                  ReportFrom(threads, NotifyDeviceConnect);
              }},
             {"floor", threads == 1 ? 1.02 : 1.10,
              [=] {
                  ReportFrom(threads, ReportInTurn);
              }}},
            threads == 1 ? Time::OfComputing : Time::OfEverything);
}

} // namespace kestraboot::bench
