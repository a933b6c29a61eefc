#pragma once

#include "process_list.h"

#include <string>

/// Stops a process of the boot program: by its window, or by terminating it. Returns the outcome, for
/// the log.
std::wstring End(const BootProcess& process);
