#include "bench/floors/dispatch.h"

#include <windows.h>

namespace kestraboot::bench
{
namespace
{

CRITICAL_SECTION turn;
volatile Report registered = nullptr;

} // namespace

void PrepareReports(Report report)
{
    ::InitializeCriticalSection(&turn);
    registered = report;
}

void ReportInTurn(std::wstring& kind, std::wstring& deviceId)
{
    ::EnterCriticalSection(&turn);
    registered(kind, deviceId);
    ::LeaveCriticalSection(&turn);
}

} // namespace kestraboot::bench
