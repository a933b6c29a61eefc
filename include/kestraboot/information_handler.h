/// @file
/// The registry of compatible applications.
#pragma once

#include "kestraboot/application_info.h"
#include "kestraboot/export.h"

#include <cstdint>
#include <string>
#include <vector>

/// Lists the installed compatible applications, answers queries about them and maintains the auto-run
/// entry of the machine.
///
/// **Lifetime.** The caller creates, copies and destroys the object. It owns the list and nothing else:
/// no handle and no thread. The list is empty until LoadInformation() or MaintainOrder() fills it.
///
/// **Threads.** The object takes no lock: use it from one thread at a time. Objects on different threads
/// share nothing but the registry.
///
/// **Failures.** Registry errors are ignored; they show only in the results described here. If an
/// allocation fails, the caller gets std::bad_alloc; only the three queries (GetAllApplicationInfo(),
/// GetApplicationInfo(), GetDefaultApplicationInfo()) return false instead. Unless stated otherwise, an
/// output argument is unchanged when the result is false. An input argument is not modified, although it
/// is passed by reference.
///
/// **Operations that end the process.** If no compatible application is left, MaintainOrder() ends the
/// process. These operations call it:
///
/// - GetKestraLaunchStatus(), SetKestraLaunchStatus(), GetKestraLocaleString() and Uninstall();
/// - SetApplicationDefaultStatus(), LaunchDefaultKestra() and LaunchOwnKestra() of
///   CKestraBootCommandHandler;
/// - the volume tracker of StartDeviceConnectService().
///
/// The other operations never end the process.
class CKestraBootInformationHandler
{
public:
    /// Rebuilds the list from the registry. An application is listed if its CmdLine and ProxyPath exist
    /// as files or folders and "AutoLaunchOnDeviceConnect" does not leave it out. Application keys
    /// nearer to the root come first; below one key they are in the registry's order. Two keys that
    /// describe one application give two records.
    ///
    /// Writes to the registry: creates the current user's missing Preferences keys, with "DefaultFlag" 0
    /// (application_info.h). Reads the disk: checks that two files of each application exist.
    ///
    /// @throws std::bad_alloc the list is then the previous one, or the first part of the new one
    KESTRABOOT_API void LoadInformation();

    /// Copies the list. Reads neither the registry nor the disk.
    ///
    /// @param[out] all replaced by a copy of the list; unchanged if it is the object's own list
    /// @return false only if memory ran out
    [[nodiscard]] KESTRABOOT_API bool GetAllApplicationInfo(std::vector<appInfo_tag>& all);

    /// Finds an application by its name. Reads neither the registry nor the disk.
    ///
    /// @param[in] name compared exactly, case included
    /// @param[out] out the first record of that name
    /// @return false if there is none, or memory ran out
    [[nodiscard]] KESTRABOOT_API bool GetApplicationInfo(std::wstring& name, appInfo_tag& out) const;

    /// Finds the default applications. Reads neither the registry nor the disk.
    ///
    /// @param[in,out] defaults not cleared first; every record with a nonzero DefaultFlag is appended,
    ///     in the order of the list
    /// @return false only if memory ran out
    [[nodiscard]] KESTRABOOT_API bool
    GetDefaultApplicationInfo(std::vector<appInfo_tag>& defaults) const;

    /// Maintains the order: reloads the list, as LoadInformation() does, and sets the machine's auto-run
    /// entry. If the running program is the proxy of a listed application, the entry names that program;
    /// otherwise it names the proxy of the first application.
    ///
    /// Writes to the registry: the keys that LoadInformation() writes, and the string
    /// "Corvane Kestrafetch" in `HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run`, with
    /// the path in double quotes. A process that may not write there leaves the entry unchanged, without
    /// an error and without a trace line.
    ///
    /// **Ends the process**, with exit code 0, if the list is empty. It starts the legacy organiser's
    /// auto-launch (StartVel3AutoLaunch()), deletes the auto-run entry if the process may write there,
    /// and calls `ExitProcess`. The caller's destructors do not run, and Windows ends the other threads
    /// wherever they are. So no operation that maintains the order is certain to return.
    ///
    /// @throws std::bad_alloc as LoadInformation() does; the auto-run entry is then unchanged
    KESTRABOOT_API void MaintainOrder();

    /// Returns whether the application whose proxy is the running program may launch, for this user.
    /// Maintains the order first, and can so end the process (MaintainOrder()). Apart from that, writes
    /// nothing.
    ///
    /// @return false only if the stored status is 0; true also if none is stored, or if the running
    ///     program is no application's proxy
    [[nodiscard]] KESTRABOOT_API bool GetKestraLaunchStatus();

    /// Stores the launch status of the application whose proxy is the running program, for this user.
    /// The status is a value of the key above the application's key, under HKEY_CURRENT_USER; that key
    /// must exist. Maintains the order first, and can so end the process (MaintainOrder()).
    ///
    /// @param[in] status 0: not to launch; any other value: may launch
    /// @return true if the status was written
    [[nodiscard]] KESTRABOOT_API bool SetKestraLaunchStatus(std::int32_t status);

    /// Reads the user-interface language of the application whose proxy is the running program, from the
    /// machine's registry. Maintains the order first, and can so end the process (MaintainOrder()).
    ///
    /// @param[out] locale a locale name such as "de_de"; **"en_us" if the result is false**
    /// @return true if a name that is not empty was read
    [[nodiscard]] KESTRABOOT_API bool GetKestraLocaleString(std::wstring& locale);

    /// Hands over to the next application. An uninstaller calls it, through the boot executable, before
    /// it removes the application to which the running program belongs.
    ///
    /// 1. Stops every other process that runs the same executable, one after another: sends WM_QUIT to
    ///    the first top-level window titled "Corvane Kestrafetch Boot", whatever process owns it, waits
    ///    2 s, and terminates the process with exit code 0. **If no such process runs, the operation
    ///    ends here.**
    /// 2. Waits 2 s more and maintains the order, which can end the process (MaintainOrder()).
    /// 3. Starts the proxy of the first application that has another proxy than the running program, and
    ///    does not wait for it. If there is none, starts the legacy organiser's auto-launch
    ///    (StartVel3AutoLaunch()) and deletes the machine's auto-run entry; a process that may not
    ///    write there leaves the entry unchanged.
    ///
    /// Takes at least 2 s for each process plus 2 s. It also waits until the window has answered,
    /// because the message is sent, not posted. The handles of the stopped processes stay open until
    /// this process ends. There is no result: a start that failed writes the same trace line as one that
    /// succeeded.
    KESTRABOOT_API void Uninstall();

    /// Describes the legacy organiser (Corvane Vellumry 3.0) from its own registry keys. Reads them at
    /// each call, writes nothing, and does not check that the organiser's files exist.
    ///
    /// @param[in,out] record Name, ProxyPath, Desc, CmdLine, Icon and FileFormats are replaced; KeyPath,
    ///     DefaultFlag and SpareFlag are never changed
    /// @return false, with `record` unchanged, if the organiser is not installed
    /// @throws std::bad_alloc `record` is then filled in part
    [[nodiscard]] KESTRABOOT_API bool GetVel3Info(appInfo_tag& record);

    /// Lets the legacy organiser react to devices again: starts its VellumryDeviceConnect.exe with "-i",
    /// detached, and does not wait. If the organiser is not installed, does nothing. A failure is not
    /// reported.
    KESTRABOOT_API void StartVel3AutoLaunch();

    /// Stops the legacy organiser from reacting to devices: starts the same program with "-d", in the
    /// same way.
    KESTRABOOT_API void StopVel3AutoLaunch();

protected:
    std::vector<appInfo_tag> applications; ///< in the order of LoadInformation(); owned by this object
};
