// What this program shows without having been able to read all of it.
#pragma once

#include <string>

namespace kestraboot::tools
{

/// Tells standard error that something cannot be read, and why.
void TellUnread(const std::string& why);

/// Whether that happened since the last call: the program then fails, though it shows the rest.
[[nodiscard]] bool TakeUnread() noexcept;

} // namespace kestraboot::tools
