#pragma once

#include "kestraboot/application_info.h"

#include <string>
#include <string_view>

namespace kestraboot
{

/// Reads one application's key into a fresh record. What is missing leaves its member empty or zero;
/// a key that cannot be opened leaves KeyPath empty too. Where the user has no preferences key for the
/// application yet, creates it with "DefaultFlag" 0, if it can.
void ReadApplicationRecord(std::wstring keyPath, appInfo_tag& record);

/// False when the "AutoLaunchOnDeviceConnect" preference is exactly 1, per user first: the application
/// is then left out of the list.
[[nodiscard]] bool IsAutoLaunchAllowed(const std::wstring& keyPath);

/// Sets "DefaultFlag" in both hives, in each where the key `prefsPath` exists.
void WriteDefaultFlag(const std::wstring& prefsPath, std::uint32_t value);

/// The path of an application's preferences key, the same under both hives.
[[nodiscard]] std::wstring PreferencesPath(std::wstring_view keyPath);

} // namespace kestraboot
