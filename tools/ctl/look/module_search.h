// Where LoadLibrary in a boot program looks for a library without a path.
#pragma once

#include "tools/ctl/check/module_needs.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

class ModuleSearch
{
public:
    /// As a program in `programFolder` searches, which is its current folder too. Its PATH is taken to
    /// be this program's.
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
