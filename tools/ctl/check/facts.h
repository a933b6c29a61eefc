// The facts that --check found, not judged yet.
#pragma once

#include "tools/ctl/application_keys.h"
#include "tools/ctl/check/module_needs.h"
#include "tools/ctl/check/pe_image.h"
#include "tools/ctl/report.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

/// From a file's version resource, "1.0.0.0"; nothing if it has none.
using FileVersion = std::optional<std::wstring>;

/// As GetVersionEx reports it to this program.
struct WindowsVersion {
    bool known = false;
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    bool workstation = false;
};

inline constexpr const wchar_t* kUnknownUser = L"(unknown)";

/// The account whose settings this program sees.
struct Account {
    std::wstring user;                        ///< DOMAIN\name of this process, or kUnknownUser
    std::optional<std::wstring> loggedOn;     ///< DOMAIN\name that is logged on in this session
    std::optional<std::uint32_t> session = 0; ///< nothing if Windows did not report it
};

/// A process with the window of a boot program, or one that runs a registered boot program.
struct BootProcess {
    std::uint32_t id = 0;
    std::optional<std::wstring> path;    ///< nothing if this program may not ask
    std::optional<std::wstring> account; ///< DOMAIN\name, likewise
    bool elevated = false; ///< has more privileges than the account has without asking for them
};

struct Control {
    bool claimed = false; ///< a process of this session has taken control
    std::vector<BootProcess> processes;
    bool known = true; ///< Windows answered every query
};

/// OEM\album.ini beside a boot program.
struct OemFile {
    bool exists = false;
    std::optional<std::wstring> firstLine; ///< of the section KestraProxyStopInstall
    int number = 0;                        ///< at the beginning of that line
};

struct PluginFile {
    std::wstring name;
    PeReading file;
    std::vector<MissingModule> missing;
    FileVersion version;
    std::wstring originalName; ///< from the version resource; may be empty
    std::wstring sameBytesAs;  ///< an earlier file of the folder; empty if there is none
};

struct PluginFolder {
    bool exists = false;
    std::vector<PluginFile> files; ///< "*.mox", in the order in which the host loads them
    bool listed = true;            ///< to its end
};

/// The boot program in control, or else the one that the next log-on starts, and the files beside
/// it.
struct BootFolder {
    std::wstring program;
    FileVersion programVersion;
    bool libraryExists = false;
    FileVersion libraryVersion;
    OemFile oem;
    PluginFolder plugins;
};

/// A library, in the place where the boot program's LoadLibrary would find it.
struct SystemPart {
    std::optional<std::wstring> path;
    PeReading file;
    FileVersion version;
};

struct ImagingParts {
    bool serviceKnown = false; ///< whether Windows answered the query for the service
    bool serviceExists = false;
    bool serviceDisabled = false;
    bool serviceRuns = false;
    SystemPart stillImage;    ///< sti.dll
    SystemPart sourceManager; ///< twain_32.dll
    std::size_t sources = 0;  ///< 64-bit TWAIN sources
};

/// Of an application's programs.
struct ApplicationVersions {
    FileVersion command;
    FileVersion proxy;
};

/// Whether the legacy organiser's programs are there.
struct OrganiserPrograms {
    bool deviceConnect = false;
    bool proxy = false;
};

struct Facts {
    WindowsVersion windows;
    Account account;
    Report report;
    std::vector<ApplicationVersions> versions; ///< for each application of the report
    std::vector<ApplicationKey> keysOf32Bit;   ///< in the 32-bit view of the registry
    bool userHasRoot = true;                   ///< HKEY_CURRENT_USER\SOFTWARE\Corvane exists
    bool autoRunSwitchedOff = false;           ///< by the user, in Windows' list of start-up programs
    OrganiserPrograms organiserPrograms;
    Control control;
    std::optional<BootFolder> boot;
    ImagingParts imaging;
    std::optional<bool> debugOutputIsRead; ///< nothing if Windows did not report it
    FileVersion toolVersion;
    FileVersion libraryVersion; ///< of the library that this program calls
};

} // namespace kestraboot::tools
