#pragma once

#include "tests/support/temp_folder.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// The folder from which the imaging stand-ins of this process, and of those that it starts, read their
/// behaviour. One at a time.
class StandInFolder
{
public:
    StandInFolder();
    StandInFolder(const StandInFolder&) = delete;
    StandInFolder& operator=(const StandInFolder&) = delete;
    ~StandInFolder();

    /// Replaces a file in one move. Lines are UTF-8.
    void Write(const char* file, const std::vector<std::string>& lines) const;

    /// Starts or restarts a log: stand-ins write only into existing logs.
    void StartLog(const char* file) const { Write(file, {}); }
    [[nodiscard]] std::vector<std::string> Log(const char* file) const;

    [[nodiscard]] const std::filesystem::path& Path() const noexcept { return folder.Path(); }

private:
    TempFolder folder;
};

} // namespace kestraboot::tests
