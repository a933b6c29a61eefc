// Taking control: the claim, the folder, and every possible text of an OEM file's section.
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/steered_control.h"

#include <gtest/gtest.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwchar>

namespace kestraboot::fuzz
{
namespace
{

std::wstring AnyFirstLine(Random& random)
{
    static constexpr const wchar_t* kLines[] = {
        L"1",      L"01",  L" 1", L"\t1",   L"+1",  L"1x",         L"1=0",   L"1.9",
        L"2",      L"0",   L"-1", L"11",    L"1 1", L"4294967297", L"--1",   L"+ 1",
        L"x1",     L"yes", L"10", L"-0001", L"001", L"+01",        L" \t+1", L"18446744073709551617",
        L"Stop=1", L"=1",  L";1", L"1;"};
    switch (random.Below(8)) {
    case 0:
        return random.Text();
    case 1:
        return std::wstring(random.Between(255, 262), random.Pick({L' ', L'0', L'1', L'x'})) + L'1';
    case 2:
        return std::wstring(random.Below(259), random.Pick({L' ', L'0'})) + L'1' + random.Text();
    default:
        return random.Pick(kLines);
    }
}

/// Lines that end in zeros, as Windows gives a section.
std::wstring AnySection(Random& random)
{
    std::wstring section;
    if (random.Chance(85)) {
        section = AnyFirstLine(random) + L'\0';
        for (std::size_t i = random.Below(3); i > 0; --i) {
            section += AnyFirstLine(random) + L'\0';
        }
    }
    return section;
}

/// The part that fits into the room for a section: it is cut so that two zeros end it.
std::wstring AsRead(const std::wstring& section, DWORD room)
{
    return section.size() + 1 > room ? section.substr(0, room - 2) : section;
}

/// A folder and an OEM file that exist only in the answers of Windows.
class SteeredFolder
{
public:
    explicit SteeredFolder(SteeredControl& steered) : control(steered) {}

private:
    const Surroundings& Given() const { return control.surroundings; }

    DWORD ReadSection(wchar_t* buffer, DWORD room) const
    {
        const std::wstring read = AsRead(Given().section.value_or(L""), room);
        read.copy(buffer, read.size());
        buffer[read.size()] = L'\0';
        if (read.size() + 1 < room) {
            buffer[read.size() + 1] = L'\0';
        }
        return static_cast<DWORD>(read.size());
    }

    SteeredControl& control;
    FAKE_IMPORT(PathIsDirectoryW)
    isDirectory{[this](const wchar_t*) -> BOOL {
        return Given().folderExists ? TRUE : FALSE;
    }};
    FAKE_IMPORT(SetCurrentDirectoryW)
    setDirectory{[this](const wchar_t* path) -> BOOL {
        control.folder = Given().folderCanBeCurrent ? path : L"";
        return Given().folderCanBeCurrent ? TRUE : FALSE;
    }};
    FAKE_IMPORT(PathFileExistsW)
    exists{[this](const wchar_t* path) -> BOOL {
        return std::wcscmp(path, L".\\OEM\\album.ini") == 0 && Given().section ? TRUE : FALSE;
    }};
    FAKE_IMPORT(GetPrivateProfileStringW)
    names{[](const wchar_t*, const wchar_t*, const wchar_t*, wchar_t* buffer, DWORD room,
             const wchar_t*) -> DWORD {
        std::fill_n(buffer, room, L'1'); // must not be taken for the section
        return room - 2;
    }};
    FAKE_IMPORT(GetPrivateProfileSectionW)
    section{[this](const wchar_t* name, wchar_t* buffer, DWORD room, const wchar_t* file) -> DWORD {
        EXPECT_STREQ(name, L"KestraProxyStopInstall");
        EXPECT_STREQ(file, L".\\OEM\\album.ini");
        return ReadSection(buffer, room);
    }};
};

TEST(ControlFuzz, IsTakenOrNotAsTheModelSays)
{
    SteeredControl steered;
    const SteeredFolder folder(steered);
    Fuzz({.usual = 8'000}, [&](Random& random) {
        Surroundings surroundings;
        surroundings.claimCreated = random.Chance(95);
        surroundings.claimExisted = random.Chance(5);
        surroundings.executable = L"C:\\";
        while (random.Chance(70)) {
            surroundings.executable += std::wstring(random.Between(1, 90), L'f') + L'\\';
        }
        surroundings.executable += L"kestraboot.exe";
        surroundings.folderExists = random.Chance(90);
        surroundings.folderCanBeCurrent = random.Chance(90);
        surroundings.organiserInstalled = random.Chance(25);
        if (random.Chance(90)) {
            surroundings.section = AnySection(random);
        }
        steered.Become(surroundings);

        const Control control = steered.Take();

        if (surroundings.section) {
            surroundings.section = AsRead(*surroundings.section, 260);
        }
        EXPECT_EQ(control, ModelOfControl(surroundings))
            << "section: " << testing::PrintToString(surroundings.section);
    });
}

} // namespace
} // namespace kestraboot::fuzz
