#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The pictures on a volume ("E:"), in any folder, by their extension. Folders that cannot be listed are
/// passed over; a volume that goes away ends the list where it went.
std::vector<std::filesystem::path> ListPictures(const std::wstring& drive);
