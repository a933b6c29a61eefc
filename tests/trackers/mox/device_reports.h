#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

using DeviceReport = std::pair<std::wstring, std::wstring>; ///< kind, identifier

/// The host's callback of this test program while the object lives. It keeps every report. Only one
/// object may exist at a time.
class DeviceReports
{
public:
    DeviceReports();
    DeviceReports(const DeviceReports&) = delete;
    DeviceReports& operator=(const DeviceReports&) = delete;
    ~DeviceReports();

    [[nodiscard]] std::vector<DeviceReport> All() const;

    /// Runs in each report, under the dispatch lock. It may throw.
    std::function<void(const DeviceReport&)> during;
};

} // namespace kestraboot::tests
