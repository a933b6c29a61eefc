#include "tests/endurance/fuzz/launch_model.h"

#include <gmock/gmock.h>

#include <process.h>

namespace kestraboot::fuzz
{
namespace
{

std::wstring InQuotes(const std::wstring& text)
{
    if (!text.empty() && text[0] == L'"') {
        return text;
    }
    return L"\"" + text + L"\"";
}

std::wstring Joined(const std::vector<std::wstring>& words)
{
    std::wstring line;
    for (std::size_t i = 0; i < words.size(); ++i) {
        line += (i == 0 ? L"" : L" ") + words[i];
    }
    return line;
}

bool SameWord(const std::wstring& left, const wchar_t* lower)
{
    std::wstring lowered = left;
    for (wchar_t& character : lowered) {
        if (character >= L'A' && character <= L'Z') {
            character = static_cast<wchar_t>(character - L'A' + L'a');
        }
    }
    return lowered == lower;
}

/// A file without a name is not looked up.
std::vector<tests::SpawnCall> StartOf(const std::wstring& path, const std::vector<std::wstring>& words)
{
    if (path.empty()) {
        return {};
    }
    return {{_P_NOWAIT, path, words}};
}

} // namespace

int VersionClass(const Machine& machine)
{
    if (machine.failingForms == 2 || machine.platform != 2) {
        return 0;
    }
    if (machine.major == 5) {
        return machine.minor == 1 ? 1 : machine.minor == 0 ? 2 : 0;
    }
    // Without the extended form no source identifies a workstation.
    const bool workstation = machine.failingForms == 0 && machine.product == 1;
    return machine.major == 6 && machine.minor == 0 && workstation ? 3 : 0;
}

void PrintTo(const Launched& launched, std::ostream* out)
{
    *out << "starts " << testing::PrintToString(launched.starts) << ", trace "
         << testing::PrintToString(launched.trace);
}

Launched ModelOfLaunch(const Machine& machine, const std::wstring& path, const std::wstring& mode,
                       const std::wstring& type, const std::wstring& id)
{
    if (mode.empty()) {
        return {{}, {L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>"}};
    }
    const int version = VersionClass(machine);
    const bool gated = version == 1 || (version == 3 && !id.empty());
    if (gated && !(machine.sessionKnown && machine.inConsoleSession)) {
        return {{}, {L"<KestraBoot><!!! Unable to launch Kestra.>"}};
    }
    std::vector<std::wstring> words = {InQuotes(path), L"module=kestrafetch", L"params",
                                       L"mode=" + mode};
    if (!id.empty()) {
        words.push_back(L"devType=" + type);
        words.push_back(L"priDevId=" + InQuotes(id));
    }
    return {StartOf(path, words), {Joined(words)}};
}

Launched ModelOfOrganiserLaunch(const std::wstring& path, const std::wstring& type,
                                const std::wstring& id, bool started)
{
    const wchar_t* mark = L"C|";
    if (SameWord(type, L"volume")) {
        mark = L"V|";
    } else if (SameWord(type, L"scanner")) {
        mark = L"S|";
    }
    const std::vector<std::wstring> words = {InQuotes(path), L"-d", L"\"" + (mark + id) + L"\""};
    const bool running = started && !path.empty();
    return {StartOf(path, words),
            {running ? Joined(words) : L"<KestraBoot><!!! Unable to start the process.>"}};
}

} // namespace kestraboot::fuzz
