#pragma once

#include "kestraboot/command_handler.h"
#include "tests/support/fake_modules.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace kestraboot
{

using Events = std::vector<std::wstring>;

inline constexpr const wchar_t* kTookControl = L"<KestraProxy><Took control of the situation>";
inline constexpr const wchar_t* kFolderSet = L"<KestraProxy><Current working directory is set.>";
inline constexpr const wchar_t* kOtherRuns = L"<KestraProxy><Any other KestraProxy is running.>";
inline constexpr const wchar_t* kNoOemFile = L"<KestraProxy:OEM><OEM initialization file not found.>";
inline constexpr const wchar_t* kOemFile = L"<KestraProxy:OEM><OEM initialization file found.>";
inline constexpr const wchar_t* kOption = L"<KestraProxy:OEM><KestraProxyStopInstall option found.>";
inline constexpr const wchar_t* kStopping = L"<KestraProxy:OEM><Stopping KestraProxy install.>";
inline constexpr const wchar_t* kOrganiserStopped = L"start VellumryDeviceConnect.exe -d";

/// Takes control as an executable in the test's own folder. No other process shares the claim, and the
/// legacy organiser is installed.
class Control : public testing::Test
{
public:
    Control();
    ~Control() override;

protected:
    /// Returns the result of TakeControl. Appends the trace lines and the starts to `events`.
    bool Take();

    /// Whether the claim exists now.
    [[nodiscard]] bool Claimed() const;

    tests::RegistrySandbox sandbox;
    tests::TempFolder folder;            ///< the executable's folder
    std::wstring executable;             ///< its full path
    std::filesystem::path folderAtStart; ///< the current folder before the test
    Events events;
    HANDLE created = nullptr; ///< the last claim made
    tests::SpawnRecorder spawns;
    CKestraBootCommandHandler handler;

private:
    wchar_t claimName[100] = {};
    FAKE_IMPORT(CreateMutexW) mutex;
    tests::FakeModuleName moduleName;
    FAKE_IMPORT(OutputDebugStringW) output;
};

} // namespace kestraboot
