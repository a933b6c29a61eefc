#include "tests/endurance/fuzz/walk_model.h"

#include "tests/endurance/fuzz/hive.h"

#include <gmock/gmock.h>

namespace kestraboot::fuzz
{
namespace
{

std::wstring Line(unsigned level, const wchar_t* kind, const std::wstring& name)
{
    const std::wstring line =
        L"<***DeviceConnect***><" + std::to_wstring(level) + L"><" + kind + L"><" + name + L">\n";
    return line.substr(0, 259);
}

bool Supported(const std::wstring& name, const std::vector<std::wstring>& extensions)
{
    const std::size_t dot = name.rfind(L'.');
    if (dot == std::wstring::npos) {
        return false;
    }
    const std::wstring extension = name.substr(dot + 1);
    if (SameText(extension, L"pdf")) {
        return false;
    }
    for (const std::wstring& supported : extensions) {
        if (SameText(supported, extension)) {
            return true;
        }
    }
    return false;
}

} // namespace

void PrintTo(const Walked& walked, std::ostream* out)
{
    *out << (walked.found ? "found, " : "not found, ") << testing::PrintToString(walked.trace);
}

Walked ModelOfWalk(const std::wstring& root, unsigned depth, const std::vector<std::wstring>& extensions,
                   const Lister& list)
{
    Walked walked;
    std::vector<std::wstring> folders = {root};
    for (unsigned level = 1; level <= depth; ++level) {
        std::vector<std::wstring> deeper;
        for (const std::wstring& folder : folders) {
            const auto entries = list(folder);
            if (!entries) {
                return walked;
            }
            for (const Entry& entry : *entries) {
                if (entry.name == L"." || entry.name == L"..") {
                    continue;
                }
                if ((entry.attributes & 0x10) != 0) {
                    deeper.push_back(folder + L"\\" + entry.name);
                    walked.trace.push_back(Line(level, L"FOLDER", deeper.back()));
                    continue;
                }
                walked.trace.push_back(Line(level, L"FILE", entry.name));
                if (Supported(entry.name, extensions)) {
                    walked.trace.emplace_back(
                        L"<***DeviceConnect***><Supported file format is found on device.>");
                    walked.found = true;
                    return walked;
                }
            }
        }
        folders = deeper;
    }
    return walked;
}

} // namespace kestraboot::fuzz
