#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/support/signal.h"

#include <windows.h>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A host's end of a device source, which keeps the reports.
class KeptReports : public mox::ICallbackInterface
{
public:
    virtual ~KeptReports() = default;

    bool Query(mox::InterfaceNumber, void**) override { return false; }
    std::uint32_t AddReference() override { return ++references; }
    std::uint32_t Release() override { return --references; }
    mox::Status Notify(std::uint64_t, const mox::DeviceRecord* record) override;

    /// Waits until that many exist.
    [[nodiscard]] bool Await(std::size_t reports);

    [[nodiscard]] std::vector<mox::DeviceRecord> Records();

    std::atomic<std::uint32_t> references{1};
    std::atomic<int> refusals{0};      ///< the number of calls that are answered with kOutOfMemory
    const Signal* mayReturn = nullptr; ///< no call returns before
    Signal called;                     ///< set by the first one

private:
    std::mutex mutex;
    std::condition_variable grew;
    std::vector<mox::DeviceRecord> records;
};

/// A plugin of this build, loaded by the test, and its source manager. It is the module under test.
class LoadedPlugin
{
public:
    explicit LoadedPlugin(const wchar_t* file);
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;
    ~LoadedPlugin();

    mox::ISourceManager* source = nullptr;

private:
    [[nodiscard]] void* Ask(mox::InterfaceNumber number) const;

    HMODULE module;
    HMODULE before;
};

} // namespace kestraboot::tests
