// Lists folders without std::filesystem, which ends the process if memory runs out in a listing.
#pragma once

#include <string>
#include <vector>

namespace kestraboot::tools
{

struct FolderEntry {
    std::wstring name;
    bool isFolder;
};

/// The entries that fit a pattern such as L"C:\\folder\\*.mox", without links to folders. `error` is
/// Windows' reason if there may be more; else 0, also if there is no such folder.
[[nodiscard]] std::vector<FolderEntry> EntriesOf(const std::wstring& pattern, unsigned long& error);

} // namespace kestraboot::tools
