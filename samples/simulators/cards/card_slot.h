// A card reader at run time: asks Wine's mount manager to insert a folder as a removable drive, or to
// remove it again. It works on Wine alone; a real Windows has a real reader.
#pragma once

#include <string>

namespace kestraboot::simulators
{

/// Makes the Unix folder the contents of a removable drive, such as L'E'. False if the mount manager
/// refuses.
[[nodiscard]] bool InsertCard(wchar_t letter, const std::string& unixFolder);

[[nodiscard]] bool TakeCardOut(wchar_t letter);

} // namespace kestraboot::simulators
