#include "tests/endurance/fuzz/control_model.h"

#include <gmock/gmock.h>

#include <process.h>

namespace kestraboot::fuzz
{

bool IsOne(const std::wstring& line)
{
    // The no-break space is a blank to the runtime.
    std::size_t at = std::min(line.find_first_not_of(L" \t\n\v\f\r\u00A0"), line.size());
    const bool negative = at < line.size() && line[at] == L'-';
    if (at < line.size() && (line[at] == L'-' || line[at] == L'+')) {
        ++at;
    }
    const std::size_t end = std::min(line.find_first_not_of(L"0123456789", at), line.size());
    at = std::min(line.find_first_not_of(L"0", at), end);
    return !negative && line.substr(at, end - at) == L"1";
}

void PrintTo(const Control& control, std::ostream* out)
{
    *out << (control.taken ? "taken, " : "not taken, ") << (control.claimClosed ? "closed, " : "open, ")
         << testing::PrintToString(control.folder) << ", ";
    PrintTo(control.seen, out);
}

Control ModelOfControl(const Surroundings& surroundings)
{
    Control control;
    const auto stopOrganiser = [&] {
        if (surroundings.organiserInstalled) {
            const std::wstring path = L"C:\\Legacy\\VellumryDeviceConnect.exe";
            control.seen.starts.push_back({_P_DETACH, path, {L'"' + path + L'"', L"-d"}});
        }
    };
    std::vector<std::wstring>& trace = control.seen.trace;
    if (!surroundings.claimCreated || surroundings.claimExisted) {
        control.claimClosed = true;
        trace.emplace_back(L"<KestraProxy><Any other KestraProxy is running.>");
        stopOrganiser();
        return control;
    }
    trace.emplace_back(L"<KestraProxy><Took control of the situation>");
    if (surroundings.folderExists && surroundings.folderCanBeCurrent) {
        const std::wstring path = surroundings.executable.substr(0, 259);
        const std::size_t name = path.rfind(L'\\');
        control.folder = path.substr(0, name == 2 ? 3 : name); // the root keeps its backslash
        trace.emplace_back(L"<KestraProxy><Current working directory is set.>");
    }
    if (!surroundings.section) {
        trace.emplace_back(L"<KestraProxy:OEM><OEM initialization file not found.>");
    } else {
        trace.emplace_back(L"<KestraProxy:OEM><OEM initialization file found.>");
        if (!surroundings.section->empty()) {
            trace.emplace_back(L"<KestraProxy:OEM><KestraProxyStopInstall option found.>");
            if (IsOne(surroundings.section->c_str())) {
                trace.emplace_back(L"<KestraProxy:OEM><Stopping KestraProxy install.>");
                control.claimClosed = true;
                return control;
            }
        }
    }
    stopOrganiser();
    control.taken = true;
    return control;
}

} // namespace kestraboot::fuzz
