#include "tools/ctl/check/module_needs.h"

#include <cctype>
#include <deque>
#include <set>

namespace kestraboot::tools
{
namespace
{

std::string InLowerCase(std::string text)
{
    for (char& character : text) {
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return text;
}

/// A name that Windows' loader resolves by itself: no file has it.
bool IsApiSet(const std::string& name)
{
    return name.starts_with("api-ms-") || name.starts_with("ext-ms-");
}

} // namespace

std::vector<MissingModule> MissingModules(const PeImage& plugin, const FindModule& find)
{
    struct Need {
        std::string name;
        std::string neededBy;
    };
    std::deque<Need> pending;
    for (const std::string& name : plugin.needs) {
        pending.push_back({name, {}});
    }
    std::set<std::string> seen;
    std::vector<MissingModule> missing;
    for (; !pending.empty(); pending.pop_front()) {
        const Need need = pending.front();
        const std::string name = InLowerCase(need.name);
        if (IsApiSet(name) || !seen.insert(name).second) {
            continue;
        }
        const std::optional<FoundModule> found = find(need.name);
        if (!found) {
            missing.push_back({need.name, need.neededBy, L"cannot be found"});
        } else if (!found->file.image) {
            missing.push_back({need.name, need.neededBy, found->file.fault});
        } else if (found->file.image->machine != kMachine64Bit) {
            missing.push_back(
                {need.name, need.neededBy, L"is " + MachineName(found->file.image->machine)});
        } else if (!found->ofWindows) {
            for (const std::string& next : found->file.image->needs) {
                pending.push_back({next, need.name});
            }
        }
    }
    return missing;
}

} // namespace kestraboot::tools
