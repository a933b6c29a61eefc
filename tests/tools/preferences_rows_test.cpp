// The rows of --check for applications, defaults and users' settings.
#include "tests/tools/rows.h"

namespace kestraboot::tools
{
namespace
{

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const wchar_t* kRoot = L"SOFTWARE\\Corvane\\";

ListedApplication Listed(const std::wstring& name)
{
    ListedApplication application;
    application.info.Name = name;
    application.info.KeyPath = kRoot + name + L"\\Corvane Kestrafetch";
    application.info.CmdLine = L"C:\\" + name + L".exe";
    application.info.ProxyPath = L"C:\\kestraboot.exe";
    application.info.FileFormats = {{L"jpg", L"Image"}};
    application.key.path = application.info.KeyPath;
    application.key.userHasPreferences = true;
    return application;
}

class CheckedApplications : public testing::Test
{
protected:
    CheckedApplications()
    {
        facts.report.applications = {Listed(L"Viewer")};
        facts.report.next = facts.report.nextOfCard = NextLaunch{L"Viewer", L"direct"};
        facts.versions = {{L"3.0.0.0", std::nullopt}};
    }

    ListedApplication& Viewer() { return facts.report.applications[0]; }
    void MakeDefault(ListedApplication& application)
    {
        application.info.DefaultFlag = 1;
        facts.report.defaults.push_back(application.info.Name);
    }
    void LeaveOut(const ApplicationKey& key) { facts.report.leftOut = {{key, WhyLeftOut(key)}}; }

    Facts facts;
};

TEST_F(CheckedApplications, AreShownWithTheirVersions)
{
    EXPECT_THAT(Lines(ApplicationRows(facts)),
                ElementsAre("fine application Viewer: is listed: C:\\Viewer.exe, version 3.0.0.0; boot "
                            "program C:\\kestraboot.exe, no version resource"));
    Viewer().mayLaunch = false;
    EXPECT_THAT(Lines(ApplicationRows(facts)),
                ElementsAre(AllOf(StartsWith("suspicious application Viewer: "),
                                  HasSubstr("kestralaunchstatus"))));
}

TEST_F(CheckedApplications, AreNeeded)
{
    facts.report.applications.clear();
    EXPECT_THAT(Lines(ApplicationRows(facts)),
                ElementsAre(StartsWith("broken application : no application")));
}

TEST_F(CheckedApplications, AreBrokenIfTheyAreLeftOutForMoreThanTheUsersWish)
{
    ApplicationKey key;
    key.path = std::wstring(kRoot) + L"Bilder\\Corvane Kestrafetch";
    key.name = L"Bilder";
    key.commandPath = key.proxyPath = L"C:\\x.exe";
    key.commandExists = key.proxyExists = true;
    key.autoLaunchOfUser = 1;
    LeaveOut(key);
    EXPECT_THAT(Lines(ApplicationRows(facts)).at(1),
                AllOf(StartsWith("suspicious application Bilder: is registered, but left out: "
                                 "\"AutoLaunchOnDeviceConnect\" is 1 for this user"),
                      HasSubstr("set the value to 0")));
    key.commandExists = false;
    LeaveOut(key);
    EXPECT_THAT(Lines(ApplicationRows(facts)).at(1),
                AllOf(StartsWith("broken application Bilder: "), HasSubstr("C:\\x.exe; \"AutoLaunch")));
    key = {};
    key.path = L"SOFTWARE\\Corvane\\x\\corvane kestrafetch";
    key.nameInOtherCase = key.behindLongName = true;
    LeaveOut(key);
    EXPECT_THAT(Lines(ApplicationRows(facts)).at(1),
                AllOf(StartsWith("broken application SOFTWARE\\Corvane\\x\\corvane kestrafetch: "),
                      HasSubstr("its installer must write the key"), HasSubstr("the long name")));
}

TEST_F(CheckedApplications, AreBrokenInThe32BitViewUnlessTheyAreInTheOtherToo)
{
    ApplicationKey key;
    key.path = std::wstring(kRoot) + L"Narrow\\Corvane Kestrafetch";
    key.name = L"Narrow";
    facts.keysOf32Bit = {key, Viewer().key};
    const std::vector<std::string> lines = Lines(ApplicationRows(facts));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[1], StartsWith("broken application Narrow: is registered in the 32-bit view"));
    LeaveOut(key);
    EXPECT_EQ(Lines(ApplicationRows(facts)).size(), 2U);
}

TEST_F(CheckedApplications, StartByOneDefaultOrNone)
{
    EXPECT_THAT(Lines(DefaultRows(facts)),
                ElementsAre("fine default : there is no default: Viewer starts in mode direct"));
    MakeDefault(Viewer());
    EXPECT_THAT(Lines(DefaultRows(facts)),
                ElementsAre("fine default Viewer: is the default: it starts in mode direct"));
    facts.report.applications.push_back(Listed(L"Photos"));
    MakeDefault(facts.report.applications[1]);
    EXPECT_THAT(Lines(DefaultRows(facts)),
                ElementsAre(StartsWith("suspicious default : Viewer and Photos are all defaults")));
    EXPECT_THAT(Lines(DefaultRows({})),
                ElementsAre(StartsWith("fine default : there is no default, and no")));
}

TEST_F(CheckedApplications, HaveADefaultOfTheMachineThatCountsOnce)
{
    MakeDefault(Viewer());
    Viewer().key.userHasPreferences = false;
    EXPECT_THAT(
        Lines(DefaultRows(facts)),
        ElementsAre(AllOf(StartsWith("suspicious default Viewer: is a default of the machine alone"),
                          HasSubstr("-default \"Viewer\" yes"))));
    facts.userHasRoot = false; // the flag that would hide it cannot be made
    EXPECT_THAT(Lines(DefaultRows(facts)), Each(StartsWith("fine ")));
    facts.userHasRoot = true;
    Viewer().info.KeyPath = L"SOFTWARE\\Corvane\\Albums\\Corvane Kestrafetch";
    EXPECT_THAT(Lines(DefaultRows(facts)), Each(StartsWith("fine ")));
}

TEST_F(CheckedApplications, MustHandleSomethingThatACardCanHold)
{
    const auto isBroken = [&] {
        const std::vector<std::string> lines = Lines(DefaultRows(facts));
        return lines.back().starts_with("broken formats ");
    };
    EXPECT_FALSE(isBroken());
    Viewer().info.FileFormats = {{L"mp3", L"Audio"}, {L"PDF", L"Image"}};
    EXPECT_TRUE(isBroken());
    facts.report.organiser.emplace().FileFormats = {{L"jpg", L"Image"}};
    EXPECT_FALSE(isBroken()) << "without a default the organiser's kinds count";
    MakeDefault(Viewer());
    EXPECT_TRUE(isBroken());
    facts.report.applications.push_back(Listed(L"Photos"));
    EXPECT_TRUE(isBroken()) << "with a default the kinds of the others do not count";
}

TEST_F(CheckedApplications, CanHaveNoPreferencesOfTheUserUnderSomeNames)
{
    for (const wchar_t* const name : {L"Albums", L"Organ", L"a", L"\\"}) {
        EXPECT_TRUE(LosesLetters(kRoot + std::wstring(name) + L"\\1.0")) << Narrow(name);
    }
    for (const wchar_t* const name : {L"Viewer", L"Photos", L"Bilder", L"1A", L"x"}) {
        EXPECT_FALSE(LosesLetters(kRoot + std::wstring(name) + L"\\1.0")) << Narrow(name);
    }
    EXPECT_THAT(Lines(PreferencesRows(facts)), ElementsAre(StartsWith("fine preferences ")));
    Viewer().info.KeyPath = L"SOFTWARE\\Corvane\\Albums\\Corvane Kestrafetch";
    EXPECT_THAT(Lines(PreferencesRows(facts)), ElementsAre(StartsWith("fine ")))
        << "the preferences exist";
    Viewer().key.userHasPreferences = false;
    EXPECT_THAT(Lines(PreferencesRows(facts)),
                ElementsAre(AllOf(StartsWith("suspicious preferences Viewer: "),
                                  HasSubstr("HKEY_CURRENT_USER\\SOFTWARE\\Corvane\\Albums"))));
}

TEST_F(CheckedApplications, CanHaveNoPreferencesWithoutTheUsersRoot)
{
    facts.userHasRoot = false;
    EXPECT_THAT(Lines(PreferencesRows(facts)),
                ElementsAre(StartsWith("suspicious preferences : HKEY_CURRENT")));
}

TEST_F(CheckedApplications, HaveCardsDisabledByADepthOfZero)
{
    Viewer().key.sniffDepth = 1;
    EXPECT_THAT(Lines(PreferencesRows(facts)), ElementsAre(StartsWith("fine ")));
    Viewer().key.sniffDepth = 0;
    EXPECT_THAT(Lines(PreferencesRows(facts)),
                ElementsAre(StartsWith("suspicious sniff-depth Viewer: ")));
}

TEST_F(CheckedApplications, AreOnlyAPartOfTheTable)
{
    std::vector<std::string> checks;
    facts.boot.emplace();
    for (const Row& row : Check(facts)) {
        checks.emplace_back(row.check);
    }
    EXPECT_THAT(checks, ElementsAre("account", "windows", "control", "auto-run", "application",
                                    "default", "preferences", "organiser", "oem-file", "plugins", "wia",
                                    "still-image", "twain", "debug-output", "version", "version"));
}

} // namespace
} // namespace kestraboot::tools
