/// @file
/// The launcher: reads the command line of a boot executable and starts an application for an arrival.
#pragma once

#include "kestraboot/export.h"
#include "kestraboot/information_handler.h"

#include <string>
#include <vector>

/// Takes the single-instance claim, selects the application for a device and starts it.
///
/// A started application gets the command line
///
///     "<CmdLine>" module=kestrafetch params mode=<mode> devType=<kind> priDevId="<identifier>"
///
/// If the device identifier is empty, the command line ends after the mode. Nothing is escaped: an
/// identifier that begins with a double quote is passed verbatim, without further quotes. The library
/// itself uses two modes: "direct" (start with this device) and "select" (let the user choose the
/// application first).
///
/// Launches return no result. They write what they did, or why not, to the debugger output. None waits
/// for the started program or keeps its handle. Only LaunchVel3Proxy() reports a start that failed, by a
/// trace line; the others do not detect it. String arguments are only read. Lifetime, threads and
/// failures are as in the base class.
class CKestraBootCommandHandler : public CKestraBootInformationHandler
{
public:
    /// Reads the command line of this process and appends the words that a boot executable acts on.
    /// Changes nothing else; prints on standard output only in the case named below.
    ///
    /// | first argument | appended |
    /// |---|---|
    /// | none | `-install` |
    /// | `-install`, `-uninstall` | that word, as typed; further words are ignored |
    /// | `-default`, with exactly two more words | the three words, as typed |
    /// | `-default`, with another number of words | nothing; the usage is printed |
    /// | any other | nothing |
    ///
    /// The comparison ignores case.
    ///
    /// @param[in,out] arguments not cleared first
    KESTRABOOT_API void ParseCommandLineParameter(std::vector<std::wstring>& arguments);

    /// Makes an application the only default, or no default, for this user and for the machine.
    /// Maintains the order before and after, and can so end the process (MaintainOrder()).
    ///
    /// Writes to the registry: "DefaultFlag" in the Preferences keys of the application; with "yes" also
    /// 0 in those of every other listed application. Writes in each hive only if the key exists. A write
    /// that Windows refuses is not reported.
    ///
    /// @param[in] appName the application's Name, compared exactly, case included
    /// @param[in] value "yes" or "no", in any case
    /// @return false, with a text on standard output and no flag written, if the name is unknown or the
    ///     value is neither word
    [[nodiscard]] KESTRABOOT_API bool SetApplicationDefaultStatus(std::wstring& appName,
                                                                  std::wstring& value);

    /// Claims to be the one boot executable in control of this session. The claim is the named mutex
    /// "Corvane Kestrafetch Boot". It stays open until the process ends; the caller cannot release it.
    ///
    /// Changes the current directory of the process to the executable's folder; the library reads the
    /// OEM file and the device plugins below it. Stops the legacy organiser (StopVel3AutoLaunch()), also
    /// if another process holds the claim, but not if the OEM file stops the install. Writes nothing to
    /// the registry.
    ///
    /// @return false in three cases. Another process, or an earlier call in this one, holds the claim.
    ///     The mutex cannot be created, for example because a process with more privileges holds it. The
    ///     first line of the section "KestraProxyStopInstall" of `.\OEM\album.ini` is read as the
    ///     number 1; the claim is then free for another process
    [[nodiscard]] KESTRABOOT_API bool TakeControl();

    /// Starts an executable for a device. Does not access the registry. Starts nothing if `mode` is
    /// empty. Outside the active console session it starts nothing on Windows XP, and on Windows Vista
    /// nothing for a device identifier that is not empty.
    ///
    /// @param[in] appPath the executable, without quotes. It is the name of the file to run, so a path
    ///     that begins with a quote is not found; the library adds quotes to the command line alone. If
    ///     it names no folder, Windows searches PATH
    /// @param[in] mode "direct", "select" or a word of the caller's own, without blanks
    /// @param[in] deviceType kind of the device, as passed to the callback
    /// @param[in] deviceId its identifier, as passed to the callback; if empty, the started program gets
    ///     neither kind nor identifier
    KESTRABOOT_API void LaunchKestra(std::wstring& appPath, std::wstring& mode, std::wstring& deviceType,
                                     std::wstring& deviceId);

    /// Starts the default application in "direct" mode if there is exactly one default. If there is none
    /// or more than one, starts the only application in "direct" mode, or the first of several in
    /// "select" mode; an installed legacy organiser counts as a further application. Maintains the order
    /// first, and can so end the process (MaintainOrder()).
    ///
    /// @param[in] deviceType kind of the device, as passed to the callback
    /// @param[in] deviceId its identifier, as passed to the callback
    KESTRABOOT_API void LaunchDefaultKestra(std::wstring& deviceType, std::wstring& deviceId);

    /// Starts the application whose proxy is the running program, whichever application is the default.
    /// Maintains the order first, and can so end the process (MaintainOrder()).
    ///
    /// @param[in] mode "direct", "select" or a word of the caller's own, without blanks
    /// @param[in] deviceType kind of the device, as passed to the callback
    /// @param[in] deviceId its identifier, as passed to the callback
    KESTRABOOT_API void LaunchOwnKestra(std::wstring& mode, std::wstring& deviceType,
                                        std::wstring& deviceId);

    /// Passes a device to the legacy organiser's proxy, by the command line
    ///
    ///     "<proxyPath>" -d "<mark>|<deviceId>"
    ///
    /// The mark is V for a volume, S for a scanner and C for every other kind. Does not access the
    /// registry.
    ///
    /// @param[in] proxyPath the CmdLine of GetVel3Info(), without quotes, as for LaunchKestra()
    /// @param[in] deviceType kind of the device, in any case
    /// @param[in] deviceId its identifier; may be empty
    KESTRABOOT_API void LaunchVel3Proxy(std::wstring& proxyPath, std::wstring& deviceType,
                                        std::wstring& deviceId);
};
