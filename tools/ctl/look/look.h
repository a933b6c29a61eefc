// Asks Windows for all that --check judges. Reads only; no code of what it looks at runs.
#pragma once

#include "tools/ctl/check/facts.h"

namespace kestraboot::tools
{

/// Throws std::exception where the report of the library cannot be made.
[[nodiscard]] Facts Look();

// The parts of it.
[[nodiscard]] WindowsVersion LookAtWindows();
[[nodiscard]] Account LookAtAccount();

/// `proxies`: the registered boot programs, by which one without a window is known.
[[nodiscard]] Control LookAtControl(const std::vector<std::wstring>& proxies);
[[nodiscard]] BootFolder LookBeside(const std::wstring& program);
[[nodiscard]] ImagingParts LookAtImaging(const std::wstring& bootProgram);
[[nodiscard]] FileVersion VersionOf(const std::wstring& file);

/// The name under which the file was built, as its version resource says; may be empty.
[[nodiscard]] std::wstring OriginalNameOf(const std::wstring& file);

/// DOMAIN\name of the account that a process runs as; nothing where this program may not ask.
[[nodiscard]] std::optional<std::wstring> AccountOf(void* process);

/// Whether the process has more rights than its account has without asking for them.
[[nodiscard]] bool IsElevated(void* process);

} // namespace kestraboot::tools
