#include "tests/real_windows/program_list.h"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace kestraboot::real_windows
{
namespace
{

std::ifstream Open(const std::filesystem::path& file)
{
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error(file.filename().string() + " cannot be read");
    }
    return in;
}

std::string RestOf(std::istringstream& line)
{
    std::string rest;
    std::getline(line >> std::ws, rest);
    while (rest.ends_with('\r')) {
        rest.pop_back();
    }
    return rest;
}

/// One line of programs.txt; `reasons` are those of the programs that were left out.
void ReadLine(const std::string& text, bool underWine, ProgramList& list,
              std::map<std::string, std::string>& reasons)
{
    std::istringstream line(text);
    std::string word;
    std::string name;
    if (!(line >> word) || word.starts_with('#')) {
        return;
    }
    line >> name;
    const std::string reason = RestOf(line);
    if (word == "run" && !name.empty() && reason.empty()) {
        list.programs.push_back({name, {}});
    } else if (word == "leave-out" && !reason.empty()) {
        reasons[name] = reason;
    } else if ((word == "skip" || word == "skip-under-wine") && !reason.empty() &&
               !list.programs.empty()) {
        if (word == "skip" || underWine) {
            list.programs.back().skipped.push_back({name, reason});
        }
    } else {
        throw std::runtime_error("programs.txt: unknown entry: " + text);
    }
}

} // namespace

ProgramList ReadProgramList(const std::filesystem::path& folder, bool underWine)
{
    ProgramList list;
    std::map<std::string, std::string> reasons;
    std::ifstream programs = Open(folder / "programs.txt");
    for (std::string line; std::getline(programs, line);) {
        ReadLine(line, underWine, list, reasons);
    }
    std::ifstream names = Open(folder / "left-out.txt");
    for (std::string program, name; names >> program >> name;) {
        if (!reasons.contains(program)) {
            throw std::runtime_error("left-out.txt: no reason is known for " + program);
        }
        list.leftOut.push_back({program, name, reasons[program]});
    }
    return list;
}

bool Matches(const std::string& pattern, const std::string& name)
{
    if (pattern.empty()) {
        return name.empty();
    }
    if (pattern.front() != '*') {
        return !name.empty() && pattern.front() == name.front() &&
               Matches(pattern.substr(1), name.substr(1));
    }
    for (std::size_t from = 0; from <= name.size(); ++from) {
        if (Matches(pattern.substr(1), name.substr(from))) {
            return true;
        }
    }
    return false;
}

} // namespace kestraboot::real_windows
