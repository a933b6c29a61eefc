// Real OEM files in every encoding that Windows reads: the text around the option, and its place.
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/steered_control.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

/// An OEM file as its lines, and the first line of the option's section.
struct OemFile {
    std::wstring text;
    std::wstring option;
};

std::wstring AnyLine(Random& random)
{
    static constexpr const wchar_t* kLines[] = {L"1",      L"01",  L"1x",     L"2",   L"yes",
                                                L"Stop=1", L"1=0", L"0=1",    L"11",  L"1.9",
                                                L"+1",     L"-1",  L"name=x", L"a b", L"\u00E9"};
    return random.Pick(kLines);
}

OemFile AnyFile(Random& random)
{
    const std::wstring end = random.Chance(70) ? L"\r\n" : L"\n";
    OemFile file;
    const auto noise = [&] { // readers of such files skip it
        while (random.Chance(30)) {
            file.text += random.Pick({L"", L"; 1", L"   ", L";"}) + end;
        }
    };
    const auto fill = [&](bool counts) {
        for (std::size_t i = random.Below(4); i > 0; --i) {
            noise();
            const std::wstring line = AnyLine(random);
            if (counts && file.option.empty()) {
                file.option = line;
            }
            file.text += std::wstring(random.Chance(20) ? random.Below(5) : 0, L' ') + line + end;
        }
        noise();
    };
    file.text = L"; made by hand" + end;
    for (std::size_t i = random.Below(4); i > 0; --i) {
        file.text += std::wstring(L"[") +
                     random.Pick({L"Another", L"KestraProxyStopInstall2", L"KestraProxyStop", L"1"}) +
                     L"]" + end;
        fill(false);
    }
    for (std::size_t i = random.Pick<std::size_t>({0, 1, 1, 1, 1, 2}), first = i; i > 0; --i) {
        file.text += L'[' + random.OtherCase(L"KestraProxyStopInstall") + L']' + end;
        fill(i == first); // a second section of that name is never read
    }
    if (random.Chance(30)) {
        file.text += L"[Last]" + end;
        fill(false);
    }
    if (random.Chance(30) && file.text.ends_with(end)) {
        file.text.resize(file.text.size() - end.size());
    }
    return file;
}

/// As an editor would save it.
std::string Encoded(Random& random, const std::wstring& text)
{
    if (random.Chance(30)) {
        const std::wstring marked = L'\xFEFF' + text;
        return {reinterpret_cast<const char*>(marked.data()), marked.size() * sizeof(wchar_t)};
    }
    const bool utf8 = random.Chance(30);
    std::string bytes(text.size() * 4, '\0');
    const int size =
        ::WideCharToMultiByte(utf8 ? CP_UTF8 : CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                              bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(size));
    return (utf8 ? "\xEF\xBB\xBF" : "") + bytes;
}

TEST(OemFileFuzz, ARealFileStopsTheInstallIfTheModelExpectsIt)
{
    const std::filesystem::path before = std::filesystem::current_path();
    const tests::TempFolder temp;
    SteeredControl steered;
    int count = 0;
    Fuzz({.usual = 100, .share = 50}, [&](Random& random) {
        const OemFile file = AnyFile(random);
        // A new folder for each case, because Windows may remember the last file.
        const std::filesystem::path folder = temp.Path() / std::to_wstring(++count);
        temp.AddFile(folder / L"OEM" / L"album.ini", Encoded(random, file.text));
        Surroundings surroundings;
        surroundings.executable = (folder / L"kestraboot.exe").wstring();
        surroundings.section = file.option;
        steered.Become(surroundings);

        Control control = steered.Take();

        control.folder = std::filesystem::current_path().wstring();
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
        EXPECT_EQ(control, ModelOfControl(surroundings)) << testing::PrintToString(file.text);
    });
}

} // namespace
} // namespace kestraboot::fuzz
