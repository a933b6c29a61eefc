// The registry of compatible applications.
#pragma once

#include "kestraboot/application_info.h"
#include "kestraboot/export.h"

#include <cstdint>
#include <string>
#include <vector>

/// Keeps the list of the compatible applications that are installed, answers queries on it and
/// maintains the machine's one auto-run entry.
///
/// The list is empty until LoadInformation or MaintainOrder fills it. A handler takes no lock: use an
/// object from one thread at a time. Failures of the registry are never reported as exceptions; an
/// allocation failure reaches the caller as std::bad_alloc, but for the three queries, which answer
/// false. Out-parameters stay untouched where the result is false, unless said otherwise.
class CKestraBootInformationHandler
{
public:
    /// Rebuilds the list from the registry. An application is kept when its CmdLine and ProxyPath
    /// exist and its preferences do not keep it out. The order is that of the search: application
    /// keys nearer to the root first, within one key in the registry's order.
    KESTRABOOT_API void LoadInformation();

    /// Replaces `all` by a copy of the list. False only when memory ran out.
    [[nodiscard]] KESTRABOOT_API bool GetAllApplicationInfo(std::vector<appInfo_tag>& all);

    /// Copies the first record whose Name equals `name` exactly, case included. False when there is
    /// none.
    [[nodiscard]] KESTRABOOT_API bool GetApplicationInfo(std::wstring& name, appInfo_tag& out) const;

    /// Appends every record with a nonzero DefaultFlag to `defaults`, which is not cleared first.
    /// False only when memory ran out.
    [[nodiscard]] KESTRABOOT_API bool
    GetDefaultApplicationInfo(std::vector<appInfo_tag>& defaults) const;

    /// Reloads the list and points the auto-run entry at the proxy that is running now, or at the first
    /// application's proxy where the running program is none.
    /// ENDS THE PROCESS with exit code 0 when no compatible application is left, after giving device
    /// connections back to the legacy organiser and removing the auto-run entry. Every operation that
    /// is said to maintain the order can therefore not return.
    KESTRABOOT_API void MaintainOrder();

    /// Whether the running proxy's application may launch: false only when its per-user launch status
    /// is 0. Maintains the order first.
    [[nodiscard]] KESTRABOOT_API bool GetKestraLaunchStatus();

    /// Stores the launch status of the running proxy's application for this user; true when it was
    /// written. The application's per-user key is not created. Maintains the order first.
    [[nodiscard]] KESTRABOOT_API bool SetKestraLaunchStatus(std::int32_t status);

    /// Reads the locale of the running proxy's application, such as "de_de"; on false `locale` is
    /// "en_us". Maintains the order first.
    [[nodiscard]] KESTRABOOT_API bool GetKestraLocaleString(std::wstring& locale);

    /// Hands over before the running proxy's application is removed: asks every other process that
    /// runs the same executable to quit, ends it two seconds later, and starts the next application's
    /// proxy, or gives device connections back to the legacy organiser. Does nothing when no other such
    /// process runs. Takes at least 2 seconds for each of them and 2 more; maintains the order.
    KESTRABOOT_API void Uninstall();

    /// Fills `record` with the legacy organiser (Corvane Vellumry 3.0). False, and `record` untouched,
    /// when it is not installed. Its KeyPath and flags are not touched in any case.
    [[nodiscard]] KESTRABOOT_API bool GetVel3Info(appInfo_tag& record);

    /// Lets the legacy organiser react to devices again. Nothing happens when it is not installed.
    KESTRABOOT_API void StartVel3AutoLaunch();

    /// Keeps the legacy organiser from reacting to devices. Nothing happens when it is not installed.
    KESTRABOOT_API void StopVel3AutoLaunch();

protected:
    std::vector<appInfo_tag> applications; ///< in the order of the search; owned by this object
};
