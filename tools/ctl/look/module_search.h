// The search of LoadLibrary, in a boot program, for a library without a path.
#pragma once

#include "tools/ctl/check/module_needs.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

/// Throws std::runtime_error if Windows does not report it.
[[nodiscard]] std::wstring WindowsFolder();

class ModuleSearch
{
public:
    /// Searches as a program in `programFolder` does, which is its current folder too. Its PATH is
    /// assumed to be this program's. Throws as WindowsFolder does.
    explicit ModuleSearch(const std::wstring& programFolder);

    [[nodiscard]] std::optional<std::wstring> PathOf(const std::wstring& name) const;

    /// Reads each file once.
    [[nodiscard]] std::optional<FoundModule> Find(const std::string& name);

private:
    struct Folder {
        std::wstring path;
        bool ofWindows;
    };
    std::vector<Folder> folders; ///< in the order of the search
    std::map<std::wstring, FoundModule> read;
};

} // namespace kestraboot::tools
