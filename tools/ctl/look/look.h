// Collects the facts that --check judges. Reads only; none of the code that it reads runs.
#pragma once

#include "tools/ctl/check/facts.h"

namespace kestraboot::tools
{

/// Throws std::exception if the report of the library cannot be made.
[[nodiscard]] Facts Look();

// The parts of it.
[[nodiscard]] WindowsVersion LookAtWindows();
[[nodiscard]] Account LookAtAccount();

/// `proxies`: the registered boot programs, which identify one without a window.
[[nodiscard]] Control LookAtControl(const std::vector<std::wstring>& proxies);
[[nodiscard]] BootFolder LookBeside(const std::wstring& program);
[[nodiscard]] ImagingParts LookAtImaging(const std::wstring& bootProgram);
[[nodiscard]] FileVersion VersionOf(const std::wstring& file);

/// The name under which the file was built, from its version resource; may be empty.
[[nodiscard]] std::wstring OriginalNameOf(const std::wstring& file);

/// DOMAIN\name of the account that a process runs as; nothing if this program may not ask.
[[nodiscard]] std::optional<std::wstring> AccountOf(void* process);

/// Whether the process has more privileges than its account has without asking for them; nothing if this
/// program may not ask.
[[nodiscard]] std::optional<bool> IsElevated(void* process);

} // namespace kestraboot::tools
