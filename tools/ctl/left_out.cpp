#include "tools/ctl/left_out.h"

namespace kestraboot::tools
{
namespace
{

void AddFile(std::vector<Reason>& reasons, const wchar_t* value, const std::optional<std::wstring>& path,
             bool exists, const char* missingValue, const char* missingFile)
{
    const std::wstring named = std::wstring(L"\"") + value + L"\"";
    if (!path || path->empty()) {
        reasons.push_back({missingValue, named + (path ? L" is empty" : L" is missing")});
    } else if (!exists) {
        const bool quoted = path->front() == L'"';
        reasons.push_back({missingFile, named + L" names a file that does not exist: " + *path +
                                            (quoted ? L" (the quotes do not belong there)" : L"")});
    }
}

} // namespace

std::vector<Reason> WhyLeftOut(const ApplicationKey& key)
{
    std::vector<Reason> reasons;
    if (key.nameInOtherCase) {
        reasons.push_back({"key-name-in-other-case",
                           L"the key's name is to be written \"Corvane Kestrafetch\", case included"});
    }
    if (key.belowAnother) {
        reasons.push_back({"below-another", L"the key is below another application's key"});
    }
    if (key.behindLongName) {
        reasons.push_back({"behind-long-name", L"a key before it has a name of 128 or more characters, "
                                               L"which ends the search there"});
    }
    AddFile(reasons, L"CmdLine", key.commandPath, key.commandExists, "no-application-value",
            "no-application-file");
    AddFile(reasons, L"ProxyPath", key.proxyPath, key.proxyExists, "no-proxy-value", "no-proxy-file");
    // The user's value decides if there is one.
    if (key.autoLaunchOfUser.value_or(key.autoLaunchOfMachine.value_or(0)) == 1) {
        reasons.push_back(
            {"kept-out", std::wstring(L"\"AutoLaunchOnDeviceConnect\" is 1 ") +
                             (key.autoLaunchOfUser ? L"for this user" : L"on this machine")});
    }
    return reasons;
}

} // namespace kestraboot::tools
