#include "tests/support/temp_folder.h"

#include <windows.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <string>

namespace kestraboot::tests
{

TempFolder::TempFolder()
{
    static std::atomic<int> count = 0;
    path = std::filesystem::temp_directory_path() /
           ("kestraboot-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(count++));
    std::filesystem::remove_all(path); // of an earlier process with the same number
    std::filesystem::create_directories(path);
}

TempFolder::~TempFolder()
{
    std::error_code ignored; // any remainder is in the prefix, which is removed after the run
    std::filesystem::remove_all(path, ignored);
}

std::filesystem::path TempFolder::AddFile(const std::filesystem::path& relative,
                                          std::string_view contents) const
{
    const std::filesystem::path file = path / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out.exceptions(std::ios::failbit | std::ios::badbit);
    out << contents;
    return file;
}

std::filesystem::path TempFolder::AddFolder(const std::filesystem::path& relative) const
{
    std::filesystem::create_directories(path / relative);
    return path / relative;
}

std::string Contents(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace kestraboot::tests
