/// @file
/// The launcher: what a boot executable does with its command line and with an arrival.
#pragma once

#include "kestraboot/export.h"
#include "kestraboot/information_handler.h"

#include <string>
#include <vector>

/// Takes the single-instance claim, chooses the application for a device and starts it.
///
/// A started application sees the command line
///
///     "<CmdLine>" module=kestrafetch params mode=<mode> devType=<kind> priDevId="<identifier>"
///
/// or, for an empty device identifier, the same up to the mode. Nothing is escaped: an identifier that
/// begins with a double quote stands as it is. The modes that the library itself chooses are "direct"
/// (start with this device) and "select" (let the user choose the application first).
///
/// Launches have no result; they say what they did, or why not, on the debugger output. None waits for
/// the started program or keeps its handle; a start that fails is not noticed, but by LaunchVel3Proxy(),
/// which says so on the debugger output. String arguments are only read. Lifetime, threads and errors as
/// in the base class.
class CKestraBootCommandHandler : public CKestraBootInformationHandler
{
public:
    /// Reads this process's own command line and finds the words that a boot executable acts on. Changes
    /// nothing; prints on standard output where said.
    ///
    /// | first argument | appended |
    /// |---|---|
    /// | none at all | `-install` |
    /// | `-install`, `-uninstall` | that word, as typed; what follows is ignored |
    /// | `-default`, with exactly two words more | the three words, as typed |
    /// | `-default`, with another number of words | nothing; the usage is printed |
    /// | any other | nothing |
    ///
    /// Words are compared without regard to case.
    ///
    /// @param[in,out] arguments not cleared first
    KESTRABOOT_API void ParseCommandLineParameter(std::vector<std::wstring>& arguments);

    /// Makes an application the only default, or no default, for this user and for the machine.
    /// Maintains the order before and after, and can so end the process (MaintainOrder()).
    ///
    /// Writes to the registry: "DefaultFlag" in the Preferences keys of the application, and with "yes"
    /// 0 in those of every other application of the list; in each hive only where the key exists. A
    /// write that is refused is not reported.
    ///
    /// @param[in] appName compared exactly, case included
    /// @param[in] value "yes" or "no", without regard to case
    /// @return false, with a text on standard output and no flag written, for an unknown name or another
    ///     value
    [[nodiscard]] KESTRABOOT_API bool SetApplicationDefaultStatus(std::wstring& appName,
                                                                  std::wstring& value);

    /// Claims to be the one boot executable in control of this session. The claim is the named mutex
    /// "Corvane Kestrafetch Boot", which stays open until the process ends; it cannot be given back.
    ///
    /// Effects on the process: its current directory becomes the executable's folder (and so the place
    /// of the OEM file and of the device plugins). Starts the legacy organiser's program
    /// (StopVel3AutoLaunch()), also where another holds the claim, but not where the OEM file stops the
    /// install. Writes nothing to the registry.
    ///
    /// @return false when another process (or this one, before) holds the claim; when it cannot be made,
    ///     as where a process with higher rights holds it; or when the first line of the section
    ///     "KestraProxyStopInstall" of `.\OEM\album.ini` is read as the number 1, and the claim is then
    ///     free for another
    [[nodiscard]] KESTRABOOT_API bool TakeControl();

    /// Starts an executable for a device. Refused for an empty `mode`, and outside the active console
    /// session on Windows XP and, where there is a device identifier, on Windows Vista. Reads and writes
    /// nothing in the registry.
    ///
    /// @param[in] appPath the executable, without quotes: it is the name of the file to run, and only
    ///     what the started program sees of it is put in quotes. A path that begins with a quote is not
    ///     found. Searched along PATH where it names no folder
    /// @param[in] mode "direct", "select" or a word of the caller's own, without blanks
    /// @param[in] deviceType kind of the device, as the callback was told
    /// @param[in] deviceId its identifier, as the callback was told; empty: the started program is told
    ///     neither kind nor identifier
    KESTRABOOT_API void LaunchKestra(std::wstring& appPath, std::wstring& mode, std::wstring& deviceType,
                                     std::wstring& deviceId);

    /// Starts the one default application in "direct" mode. Without a single default it starts the only
    /// application in "direct" mode, or the first of several in "select" mode; an installed legacy
    /// organiser counts as a second one. Maintains the order first, and can so end the process
    /// (MaintainOrder()).
    ///
    /// @param[in] deviceType kind of the device, as the callback was told
    /// @param[in] deviceId its identifier, as the callback was told
    KESTRABOOT_API void LaunchDefaultKestra(std::wstring& deviceType, std::wstring& deviceId);

    /// Starts the application whose proxy is the running program, whichever is the default. Maintains
    /// the order first, and can so end the process (MaintainOrder()).
    ///
    /// @param[in] mode "direct", "select" or a word of the caller's own, without blanks
    /// @param[in] deviceType kind of the device, as the callback was told
    /// @param[in] deviceId its identifier, as the callback was told
    KESTRABOOT_API void LaunchOwnKestra(std::wstring& mode, std::wstring& deviceType,
                                        std::wstring& deviceId);

    /// Hands a device to the legacy organiser's proxy, by the command line
    ///
    ///     "<proxyPath>" -d "<mark>|<deviceId>"
    ///
    /// with the mark V for a volume, S for a scanner and C for everything else. Reads and writes nothing
    /// in the registry.
    ///
    /// @param[in] proxyPath the CmdLine of GetVel3Info(), without quotes, as for LaunchKestra()
    /// @param[in] deviceType kind of the device, without regard to case
    /// @param[in] deviceId its identifier; may be empty
    KESTRABOOT_API void LaunchVel3Proxy(std::wstring& proxyPath, std::wstring& deviceType,
                                        std::wstring& deviceId);
};
