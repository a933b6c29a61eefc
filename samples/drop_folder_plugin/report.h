#pragma once

#include "kestraboot/mox_plugin.h"

#include <string>

/// Reports the folder as a device of kind "archive". Returns when the application was started.
///
/// @return false: the host took no report
[[nodiscard]] bool Report(kestraboot::mox::ICallbackInterface& callback, const std::wstring& folder);
