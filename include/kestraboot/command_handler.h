// The launcher: what a boot executable does with its command line and with an arrival.
#pragma once

#include "kestraboot/export.h"
#include "kestraboot/information_handler.h"

#include <string>
#include <vector>

/// Takes the single-instance claim, chooses the application for a device and starts it.
///
/// A started application sees the command line
///   "<CmdLine>" module=kestrafetch params mode=<mode> devType=<kind> priDevId="<identifier>"
/// or, for an empty device identifier, the same up to the mode. Nothing is escaped: an identifier that
/// begins with a double quote stands as it is. The modes that the library itself chooses are "direct"
/// (start with this device) and "select" (let the user choose the application first).
///
/// Launches have no result; they say what they did, or why not, on the debugger output. None waits for
/// the started program. String arguments are not modified. Threads and errors as in the base class.
class CKestraBootCommandHandler : public CKestraBootInformationHandler
{
public:
    /// Appends the words of this process's own command line that a boot executable acts on:
    /// "-install" (also for no argument), "-uninstall", or "-default" with an application's name and
    /// "yes" or "no". Words stay as typed. A "-default" with another number of words appends nothing
    /// and prints the usage on standard output; any other argument appends nothing.
    KESTRABOOT_API void ParseCommandLineParameter(std::vector<std::wstring>& arguments);

    /// With "yes" makes the application of that name the only default, with "no" clears its flag; for
    /// this user and the machine where their preferences keys exist. False, with a text on standard
    /// output and nothing written, for an unknown name or another value. Maintains the order.
    [[nodiscard]] KESTRABOOT_API bool SetApplicationDefaultStatus(std::wstring& appName,
                                                                  std::wstring& value);

    /// Claims to be the one boot executable in control of this session; the claim lasts until the
    /// process ends. Makes the executable's folder the current directory and stops the legacy
    /// organiser's own reaction to devices. False when another process (or this one, before) holds the
    /// claim, or when the OEM file ".\OEM\album.ini" stops the install.
    [[nodiscard]] KESTRABOOT_API bool TakeControl();

    /// Starts the executable `appPath` (with or without quotes) for a device. Refused for an empty
    /// `mode`, and on Windows XP and Vista for a process outside the active console session.
    KESTRABOOT_API void LaunchKestra(std::wstring& appPath, std::wstring& mode, std::wstring& deviceType,
                                     std::wstring& deviceId);

    /// Starts the one default application in "direct" mode; without a single default, the only
    /// application in "direct" mode, or the first of several in "select" mode (the legacy organiser
    /// counts as a second one). Maintains the order.
    KESTRABOOT_API void LaunchDefaultKestra(std::wstring& deviceType, std::wstring& deviceId);

    /// Starts the application whose proxy is the running program. Maintains the order.
    KESTRABOOT_API void LaunchOwnKestra(std::wstring& mode, std::wstring& deviceType,
                                        std::wstring& deviceId);

    /// Hands a device to the legacy organiser's proxy:
    ///   "<proxyPath>" -d "<V|, C| or S|><deviceId>"
    KESTRABOOT_API void LaunchVel3Proxy(std::wstring& proxyPath, std::wstring& deviceType,
                                        std::wstring& deviceId);
};
