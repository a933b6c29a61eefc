/// @file
/// The registry of compatible applications.
#pragma once

#include "kestraboot/application_info.h"
#include "kestraboot/export.h"

#include <cstdint>
#include <string>
#include <vector>

/// Keeps the list of the compatible applications that are installed, answers queries on it and
/// maintains the machine's one auto-run entry.
///
/// **Lifetime.** The caller makes, copies and destroys the object; it holds the list and nothing else,
/// no handle and no thread. The list is empty until LoadInformation() or MaintainOrder() fills it.
///
/// **Threads.** No lock is taken: use an object from one thread at a time. Objects on different threads
/// share nothing but the registry.
///
/// **Failures.** What cannot be opened, read or written in the registry is passed over in silence, and
/// shows only in the results described here. An allocation that fails reaches the caller as
/// std::bad_alloc, but for the three queries, which answer false. Arguments that are filled stay
/// untouched where the result is false, unless said otherwise. Arguments that are only read are not
/// modified, although they are taken by reference.
///
/// **What ends the process.** MaintainOrder() does when no compatible application is left. It is called
/// by GetKestraLaunchStatus(), SetKestraLaunchStatus(), GetKestraLocaleString(), Uninstall() and, in
/// CKestraBootCommandHandler, SetApplicationDefaultStatus(), LaunchDefaultKestra() and
/// LaunchOwnKestra(); and by the volume tracker of StartDeviceConnectService(). The other operations
/// never end the process.
class CKestraBootInformationHandler
{
public:
    /// Rebuilds the list from the registry. An application is kept when its CmdLine and ProxyPath exist
    /// as files or folders and its preferences do not keep it out. The order is that of the search:
    /// application keys nearer to the root first, within one key in the registry's order. Two keys that
    /// describe one application give two records.
    ///
    /// Writes to the registry: the current user's missing Preferences keys are created, with
    /// "DefaultFlag" 0 (application_info.h). Touches the disk: asks for two files of each application.
    ///
    /// @throws std::bad_alloc the list is then the old one, or the beginning of the new one
    KESTRABOOT_API void LoadInformation();

    /// Copies the list. Reads neither the registry nor the disk.
    ///
    /// @param[out] all replaced by a copy of the list; where it is the object's own list, left as it is
    /// @return false only when memory ran out
    [[nodiscard]] KESTRABOOT_API bool GetAllApplicationInfo(std::vector<appInfo_tag>& all);

    /// Finds an application by its name. Reads neither the registry nor the disk.
    ///
    /// @param[in] name compared exactly, case included
    /// @param[out] out the first record of that name
    /// @return false when there is none, or memory ran out
    [[nodiscard]] KESTRABOOT_API bool GetApplicationInfo(std::wstring& name, appInfo_tag& out) const;

    /// Finds the default applications. Reads neither the registry nor the disk.
    ///
    /// @param[in,out] defaults every record with a nonzero DefaultFlag is appended, in the list's order;
    /// it
    ///     is not cleared first
    /// @return false only when memory ran out
    [[nodiscard]] KESTRABOOT_API bool
    GetDefaultApplicationInfo(std::vector<appInfo_tag>& defaults) const;

    /// Reloads the list, as LoadInformation() does, and points the machine's auto-run entry at the right
    /// proxy: the running program where it is the proxy of an application of the list, and otherwise the
    /// first application's proxy.
    ///
    /// Writes to the registry: what LoadInformation() writes, and the string "Corvane Kestrafetch" in
    /// `HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run`, the path in double quotes.
    /// Without the right to write there the entry stays as it was, and nothing is said.
    ///
    /// **Ends the process**, with exit code 0, when the list is empty: it starts the legacy organiser's
    /// auto-launch (StartVel3AutoLaunch()), deletes the auto-run entry and calls `ExitProcess`. The
    /// caller's destructors do not run then, and other threads end where they are. Every operation that
    /// is said to maintain the order can therefore not return.
    ///
    /// @throws std::bad_alloc as LoadInformation() does; the auto-run entry is then as it was
    KESTRABOOT_API void MaintainOrder();

    /// Tells whether the application whose proxy is the running program may launch, for this user.
    /// Maintains the order first, and can so end the process (MaintainOrder()). Writes nothing of its
    /// own.
    ///
    /// @return false only when the stored status is 0; true also where none is stored, and where the
    ///     running program is no application's proxy
    [[nodiscard]] KESTRABOOT_API bool GetKestraLaunchStatus();

    /// Stores the launch status of the application whose proxy is the running program, for this user, in
    /// the application's key under HKEY_CURRENT_USER, which must exist. Maintains the order first, and
    /// can so end the process (MaintainOrder()).
    ///
    /// @param[in] status 0: not to launch; any other value: may launch
    /// @return true when it was written
    [[nodiscard]] KESTRABOOT_API bool SetKestraLaunchStatus(std::int32_t status);

    /// Reads the user-interface language of the application whose proxy is the running program, from the
    /// machine's registry. Maintains the order first, and can so end the process (MaintainOrder()).
    ///
    /// @param[out] locale a locale name such as "de_de"; **"en_us" where the result is false**
    /// @return true when a name that is not empty was read
    [[nodiscard]] KESTRABOOT_API bool GetKestraLocaleString(std::wstring& locale);

    /// Hands over before the application to which the running program belongs is removed.
    ///
    /// Every other process that runs the same executable is stopped, one after another: the first
    /// top-level window titled "Corvane Kestrafetch Boot", whosever it is, is sent WM_QUIT; two seconds
    /// later the process is terminated with exit code 0. **Where no such process runs, nothing else
    /// happens.** After two seconds more the order is maintained, which can end the process
    /// (MaintainOrder()). Then the proxy of the first application that is another's is started, without
    /// waiting; where there is none, the legacy organiser's auto-launch is started
    /// (StartVel3AutoLaunch()) and the machine's auto-run entry deleted.
    ///
    /// Takes at least two seconds for each process and two more, and as long as the window takes to
    /// answer: the message is sent, not posted. The handles of the stopped processes stay open until
    /// this process ends. Nothing is reported; a start that failed is traced like one that worked.
    KESTRABOOT_API void Uninstall();

    /// Describes the legacy organiser (Corvane Vellumry 3.0) from its own registry keys, at each call
    /// afresh. Writes nothing; its files are not looked for.
    ///
    /// @param[in,out] record Name, ProxyPath, Desc, CmdLine, Icon and FileFormats are replaced; KeyPath
    /// and
    ///     the flags are not touched in any case
    /// @return false, and `record` untouched, when it is not installed
    /// @throws std::bad_alloc `record` is then filled in part
    [[nodiscard]] KESTRABOOT_API bool GetVel3Info(appInfo_tag& record);

    /// Lets the legacy organiser react to devices again: starts its VellumryDeviceConnect.exe with "-i",
    /// detached and without waiting. Nothing happens when it is not installed; nothing is reported.
    KESTRABOOT_API void StartVel3AutoLaunch();

    /// Keeps the legacy organiser from reacting to devices: the same program with "-d".
    KESTRABOOT_API void StopVel3AutoLaunch();

protected:
    std::vector<appInfo_tag> applications; ///< in the order of the search; owned by this object
};
