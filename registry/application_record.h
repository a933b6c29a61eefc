#pragma once

#include "kestraboot/application_info.h"

#include <string>
#include <string_view>

namespace kestraboot
{

/// Reads one application's key into a new record. A missing value leaves its member empty or zero;
/// a key that cannot be opened leaves KeyPath empty too. If the user has no preferences key for the
/// application yet, creates it with "DefaultFlag" 0; a failure is ignored.
void ReadApplicationRecord(std::wstring keyPath, appInfo_tag& record);

/// False if the "AutoLaunchOnDeviceConnect" preference is exactly 1, the user's before the
/// machine's: the application is then left out of the list.
[[nodiscard]] bool IsAutoLaunchAllowed(const std::wstring& keyPath);

/// Sets "DefaultFlag" in each hive in which the key `prefsPath` exists.
void WriteDefaultFlag(const std::wstring& prefsPath, std::uint32_t value);

/// The path of an application's preferences key, the same under both hives.
[[nodiscard]] std::wstring PreferencesPath(std::wstring_view keyPath);

} // namespace kestraboot
