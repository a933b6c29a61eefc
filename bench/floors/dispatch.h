#pragma once

#include <string>

namespace kestraboot::bench
{

using Report = void (*)(std::wstring&, std::wstring&);

/// Call it before the first report.
void PrepareReports(Report report);

/// An indirect call in a critical section.
void ReportInTurn(std::wstring& kind, std::wstring& deviceId);

} // namespace kestraboot::bench
