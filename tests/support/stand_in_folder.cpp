#include "tests/support/stand_in_folder.h"

#include <windows.h>

#include <fstream>
#include <stdexcept>

namespace kestraboot::tests
{

StandInFolder::StandInFolder()
{
    ::SetEnvironmentVariableW(L"KESTRABOOT_SIMULATORS", folder.Path().wstring().c_str());
}

StandInFolder::~StandInFolder()
{
    ::SetEnvironmentVariableW(L"KESTRABOOT_SIMULATORS", nullptr);
}

void StandInFolder::Write(const char* file, const std::vector<std::string>& lines) const
{
    std::string contents;
    for (const std::string& line : lines) {
        contents += line + "\n";
    }
    const std::filesystem::path whole = folder.AddFile(std::string(file) + ".new", contents);
    const std::filesystem::path target = folder.Path() / file;
    // A reader that has the old file open delays the move for a moment.
    for (int tries = 0; !::MoveFileExW(whole.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING);
         ++tries) {
        if (tries == 100) {
            throw std::runtime_error("cannot replace " + target.string());
        }
        ::Sleep(10);
    }
}

std::vector<std::string> StandInFolder::Log(const char* file) const
{
    std::vector<std::string> lines;
    std::ifstream in(folder.Path() / file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

} // namespace kestraboot::tests
