// Judges the facts that --check found.
#pragma once

#include "tools/ctl/check/facts.h"
#include "tools/ctl/check/row.h"

namespace kestraboot::tools
{

/// The trackers of devices that run on this Windows; device plugins run on every one.
struct WatchedDevices {
    bool volumes = false;
    bool wia = false;
    bool stillImages = false;
};
[[nodiscard]] WatchedDevices WatchedOn(const WindowsVersion& windows);

/// Everything, in the order of the page.
[[nodiscard]] Rows Check(const Facts& facts);

// The parts of the table.
[[nodiscard]] Row WindowsRow(const WindowsVersion& windows);
[[nodiscard]] Row AccountRow(const Account& account);
[[nodiscard]] Rows ControlRows(const Facts& facts);
[[nodiscard]] Row AutoRunRow(const Facts& facts);
[[nodiscard]] Rows ApplicationRows(const Facts& facts);
[[nodiscard]] Rows DefaultRows(const Facts& facts);
[[nodiscard]] Rows PreferencesRows(const Facts& facts);
[[nodiscard]] Row OrganiserRow(const Facts& facts);
[[nodiscard]] Row OemRow(const BootFolder& boot, bool inControl);
[[nodiscard]] Rows PluginRows(const PluginFolder& folder);
[[nodiscard]] Rows ImagingRows(const ImagingParts& imaging, const WatchedDevices& watched);
[[nodiscard]] Row DebugOutputRow(std::optional<bool> isRead);
[[nodiscard]] Rows VersionRows(const Facts& facts);

/// Whether the library cannot create preferences for a user: it removes all letters that occur in
/// its root from the front of the path, and so some of a product whose name begins with one.
[[nodiscard]] bool LosesLetters(const std::wstring& keyPath);

/// Whether a boot program has control and is identified.
[[nodiscard]] bool IsInControl(const Control& control);

/// The boot program whose folder is checked: the one in control; otherwise the one that the next
/// log-on starts; otherwise that of the first application; empty if there is none.
[[nodiscard]] std::wstring BootProgramToLookBeside(const Control& control, const Report& report);

} // namespace kestraboot::tools
