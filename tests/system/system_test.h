#pragma once

#include "kestraboot/version.h"
#include "tests/system/child_process.h"
#include "tests/system/debug_reader.h"
#include "tests/system/installation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestraboot::tests
{

inline const std::wstring kBootTitle = L"Corvane Kestrafetch Boot";
inline const std::wstring kVolumeWindow = L"CardReaderLookupWindow";

inline const std::string kTookControl = "<KestraProxy><Took control of the situation>";
inline const std::string kFolderSet = "<KestraProxy><Current working directory is set.>";
inline const std::string kOtherRunning = "<KestraProxy><Any other KestraProxy is running.>";
inline const std::string kOemFound = "<KestraProxy:OEM><OEM initialization file found.>";
inline const std::string kOemNotFound = "<KestraProxy:OEM><OEM initialization file not found.>";
inline const std::string kOemOption = "<KestraProxy:OEM><KestraProxyStopInstall option found.>";
inline const std::string kOemStops = "<KestraProxy:OEM><Stopping KestraProxy install.>";
inline const std::string kNoneFound =
    "<KestraBoot><!!! No Kestra Compatible application found. This situation should be avoided.>";
inline const std::string kDeletingRunKey =
    "<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>";
inline const std::string kNoWindow =
    "<KestraBoot><!!! The boot program cannot start: no window can be made.>";
inline const std::string kNoMemory = "<KestraBoot><!!! The boot program cannot go on: out of memory.>";
inline const std::string kNoFolder =
    "<KestraBoot><!!! The boot program cannot start: no folder to work in.>";
inline const std::string kNotItsFolder =
    "<KestraBoot><!!! The boot program's folder cannot be made the current one. No plugin is loaded.>";
inline const std::string kVolumes = "<***DeviceConnect***><VolumeTracker><Volumes will be detected.>";

/// The last line of each tracker that finds nothing to track.
inline const std::string kNoWia = "<***DeviceConnect***><WiaTracker><WIA devices will not be detected>.";
inline const std::string kNoSti = "<***DeviceConnect***><StiTracker><STI Devices will not be detected.>";
inline const std::string kNoPhones = "<***DeviceConnect***><NOKIA Devices will not be detected.>";

/// The answers of kestraboot.exe, and of the library to its "-default".
inline const std::string kUsageText =
    "kestraboot.exe [-install]                      takes control and serves\n"
    "kestraboot.exe -uninstall                      ends the others and hands over\n"
    "kestraboot.exe -default [app name] [yes | no]  makes it the only default or not\n"
    "kestraboot.exe --help                          shows this text (as -h and /?)\n"
    "kestraboot.exe --version                       shows the version\n";
inline const std::string kDefaultSyntax =
    "\n !!! Please follow the syntax:"
    "\n [Qualified path]\\kestraboot.exe -default [app name] [yes | no] \n";

/// The output of a program for "--version": the text of VERSION.txt, with the program's own name.
[[nodiscard]] std::string VersionText(const std::string& program = "kestraboot");

/// The exit codes of kestraboot.exe.
inline constexpr DWORD kDone = 0;
inline constexpr DWORD kCannotServe = 1;
inline constexpr DWORD kUsage = 2;
inline constexpr DWORD kNotInControl = 3;
inline constexpr DWORD kUnknownApplication = 4;

/// Real programs in a prefix of their own: the registry is empty at the start of each test.
class SystemTest : public testing::Test
{
protected:
    SystemTest() { ClearCorvaneRegistry(); }

    /// Sets the version of Windows that a program sees, by its file name, from its next start on.
    static void SetWindowsVersion(const std::wstring& program, const std::wstring& version);

    /// Waits until trackers have given up. Under Wine a process that exits while one of its threads is
    /// busy with COM may never exit.
    void AwaitTrackers(const std::vector<std::string>& lines) const;

    /// Asks a boot program to quit, as an uninstaller does, and checks that it exits cleanly.
    static void Quit(ChildProcess& boot);

    /// Asks the boot program that serves now, or soon, to quit, and waits until it has exited.
    static void EndServing();

    /// Waits until the legacy organiser was started with exactly these arguments, in any order.
    static testing::AssertionResult AwaitOrders(const LegacyOrganiser& organiser,
                                                const std::vector<std::string>& orders);

    template <typename Condition>
    static bool Within(DWORD milliseconds, Condition reached, DWORD pause = 5)
    {
        for (const ULONGLONG end = ::GetTickCount64() + milliseconds; !reached(); ::Sleep(pause)) {
            if (::GetTickCount64() > end) {
                return false;
            }
        }
        return true;
    }

    DebugReader trace;
};

} // namespace kestraboot::tests
