// The output of kestractl for real installations; it changes nothing on the machine.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/source_file.h"
#include "tests/support/unix_path.h"
#include "tests/system/registry_dump.h"
#include "tests/system/system_test.h"
#include "tests/tools/json_schema.h"

#include <gmock/gmock.h>

#include <regex>

namespace kestraboot::tests
{
namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const wchar_t* kRun = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

std::string Escaped(std::string text)
{
    for (std::size_t at = 0; (at = text.find_first_of("\\\"", at)) != std::string::npos; at += 2) {
        text.insert(at, 1, '\\');
    }
    return text;
}

/// The JSON without the build, which PrintsItsVersionAndBuild checks.
std::string WithoutBuild(const std::string& json)
{
    return std::regex_replace(json, std::regex(R"("build":\{[^}]*\},)"), "");
}

class Kestractl : public SystemTest
{
protected:
    /// Runs it and checks that the registry is unchanged, and that it started and traced nothing.
    std::string Run(const std::wstring& arguments = {}, DWORD expected = 0)
    {
        const std::vector<std::string> before = RegistryDump();
        ChildProcess tool(BuiltPrograms() / "kestractl.exe", arguments);
        EXPECT_EQ(tool.ExitCode(), expected);
        EXPECT_EQ(RegistryDump(), before);
        EXPECT_THAT(trace.LinesOf(tool.Id()), IsEmpty());
        std::string shown = tool.Output();
        if (shown.starts_with("{")) {
            static const nlohmann::json schema = ReadSchema(SourceFile("docs/kestractl.schema.json"));
            EXPECT_EQ(AgainstSchema(schema, nlohmann::json::parse(shown)), "");
        }
        return shown;
    }

    static void Break(const Installation& application)
    {
        std::filesystem::remove(application.Application());
    }
};

class ThreeApplications : public Kestractl
{
protected:
    ThreeApplications()
    {
        Break(broken);
        PutText(HKEY_LOCAL_MACHINE, kRun, L"Corvane Kestrafetch",
                L"\"" + second.Proxy().wstring() + L"\"");
    }

    Installation first{L"First"};
    Installation broken{L"Broken"};
    Installation second{L"Second"};
};

TEST_F(ThreeApplications, AreListedWithoutTheBrokenOneWhoseReasonIsShown)
{
    const std::string shown = Run();
    EXPECT_THAT(shown, AllOf(StartsWith("Applications, in the library's order\n  1. First\n"),
                             HasSubstr("\n  2. Second\n"), Not(HasSubstr("  3. "))));
    EXPECT_THAT(shown, HasSubstr("Registered, but left out\n   - Broken\n"));
    EXPECT_THAT(shown, HasSubstr("why            \"CmdLine\" names a file that does not exist: " +
                                 broken.Application().string() + "\n"));
    EXPECT_THAT(shown, HasSubstr("\nDefaults    (none)\nAn arrival  starts First in mode select\n"));
    EXPECT_THAT(shown, HasSubstr("\nAuto-run    \"" + second.Proxy().string() +
                                 "\"\n            the proxy of Second\n"));
    EXPECT_THAT(shown, HasSubstr("\nOrganiser   (not installed)\n"));
}

TEST_F(ThreeApplications, AreWrittenAsJson)
{
    PutDword(HKEY_CURRENT_USER, second.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    PutDword(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\Second", L"kestralaunchstatus", 0);
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Second", L"locale", L"de_de");
    PutDword(HKEY_CURRENT_USER, second.KeyPath(), L"SniffDepth", 2);
    const std::string json = Run(L"--json");
    const auto listed = [](const Installation& application) {
        return "{\"name\":\"" + std::filesystem::path(application.name).string() +
               "\",\"application\":\"" + Escaped(application.Application().string()) +
               "\",\"proxy\":\"" + Escaped(application.Proxy().string()) +
               "\",\"description\":\"\",\"icon\":\"\",\"formats\":[{\"extension\":\"jpg\","
               "\"mediaType\":\"Image\"}],\"key\":\"" +
               Escaped(std::filesystem::path(application.KeyPath()).string()) + "\",";
    };
    EXPECT_EQ(WithoutBuild(json),
              "{\"type\":\"report\",\"schema\":1,\"applications\":[" + listed(first) +
                  "\"default\":false,\"mayLaunch\":true,\"locale\":\"en_us\",\"localeSet\":false,"
                  "\"sniffDepth\":null}," +
                  listed(second) +
                  "\"default\":true,\"mayLaunch\":false,\"locale\":\"de_de\",\"localeSet\":true,"
                  "\"sniffDepth\":2}],\"leftOut\":[{\"name\":\"Broken\",\"key\":\"" +
                  Escaped(std::filesystem::path(broken.KeyPath()).string()) + "\",\"application\":\"" +
                  Escaped(broken.Application().string()) +
                  "\",\"applicationExists\":false,\"proxy\":\"" + Escaped(broken.Proxy().string()) +
                  "\",\"proxyExists\":true,\"reasons\":[{\"reason\":\"no-application-file\","
                  "\"text\":\"\\\"CmdLine\\\" names a file that does not exist: " +
                  Escaped(broken.Application().string()) +
                  "\"}]}],\"defaults\":[\"Second\"],\"arrivalStarts\":{\"application\":\"Second\","
                  "\"mode\":\"direct\"},\"cardStarts\":{\"application\":\"Second\",\"mode\":"
                  "\"direct\"},\"autoRun\":{\"entry\":\"\\\"" +
                  Escaped(second.Proxy().string()) +
                  "\\\"\",\"exists\":true,\"application\":\"Second\"},\"organiser\":null}\n");
}

TEST_F(ThreeApplications, ShowTheirOwnLocaleAlone)
{
    const Installation last(L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\First", L"locale", L"fr_fr");
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Second", L"locale", L"de_de");
    const std::string shown = Run();
    const auto localeAfter = [&](const char* name) {
        const std::size_t at = shown.find("locale ", shown.find(name));
        return shown.substr(at + 15, shown.find('\n', at) - at - 15);
    };
    EXPECT_EQ(localeAfter("  1. First\n"), "fr_fr");
    EXPECT_EQ(localeAfter("  2. Second\n"), "de_de");
    EXPECT_EQ(localeAfter("  3. Viewer\n"), "en_us (none is set)");
}

TEST_F(ThreeApplications, ThatShareAProxyShowTheSame)
{
    PutText(HKEY_LOCAL_MACHINE, second.KeyPath(), L"ProxyPath", first.Proxy().wstring());
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\First", L"locale", L"fr_fr");
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Second", L"locale", L"de_de");
    PutDword(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\First", L"kestralaunchstatus", 0);
    PutDword(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\Second", L"kestralaunchstatus", 1);
    const std::string json = Run(L"--json");
    EXPECT_THAT(json, AllOf(HasSubstr("fr_fr"), Not(HasSubstr("de_de"))));
    EXPECT_THAT(json, AllOf(HasSubstr("\"mayLaunch\":false"), Not(HasSubstr("\"mayLaunch\":true"))));
}

TEST_F(Kestractl, ChangesNothingEvenIfTheLibraryWould)
{
    // For a user without preferences the library creates them. There is no entry, so it would set one.
    // The machine's flag counts only once.
    const Installation application(L"App");
    PutDword(HKEY_LOCAL_MACHINE, application.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    for (int time = 1; time <= 2; ++time) {
        const std::string shown = Run();
        EXPECT_THAT(shown, HasSubstr("  1. App  [default]\n")) << time;
        EXPECT_THAT(shown, HasSubstr("Auto-run    (no entry: nothing starts at log-on)\n")) << time;
    }
    EXPECT_EQ(AutoRunEntry(), L"(none)");
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, application.KeyPath()));
}

/// Only the machine has a default among two applications. The library then creates the user's flag,
/// which hides it: the first loading serves a camera, the second one a card, because the search for the
/// card loads too.
class MachineDefault : public Kestractl
{
protected:
    MachineDefault()
    {
        PutDword(HKEY_LOCAL_MACHINE, photos.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    }
    ~MachineDefault() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    Installation bilder{L"Bilder"};
    Installation photos{L"Photos"};
};

TEST_F(MachineDefault, CountsForACameraButNotForACardOfANewUser)
{
    EXPECT_THAT(Run(), HasSubstr("\nDefaults    Photos\n"
                                 "An arrival  starts Photos in mode direct\n"
                                 "A card      starts Bilder in mode select\n"
                                 "            (the machine's default holds until the user's own flag is "
                                 "made, which the search of a card does)\n"
                                 "Auto-run    "));
    EXPECT_THAT(Run(L"--json"),
                HasSubstr("\"arrivalStarts\":{\"application\":\"Photos\",\"mode\":\"direct\"},"
                          "\"cardStarts\":{\"application\":\"Bilder\",\"mode\":\"select\"},"));
}

TEST_F(MachineDefault, CountsForACardTooIfTheUserCanHaveNoFlag)
{
    RemoveKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    EXPECT_THAT(Run(), HasSubstr("\nAn arrival  starts Photos in mode direct\nAuto-run "));
    EXPECT_THAT(Run(L"--json"),
                HasSubstr("\"cardStarts\":{\"application\":\"Photos\",\"mode\":\"direct\"},"));
}

TEST_F(MachineDefault, IsReportedAsTheLibraryThenTreatsIt)
{
    EXPECT_THAT(Run(), HasSubstr("\nA card      starts Bilder in mode select\n"));
    const TempFolder card;
    card.AddFile(L"IMG_0001.JPG", "picture");
    SetWindowsVersion(L"kestraboot.exe", L"vista");
    ChildProcess boot(bilder.Proxy());
    const HWND window = AwaitWindow(boot.Id(), kVolumeWindow);
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
    ASSERT_TRUE(simulators::SendVolumeMessage(window, DBT_DEVICEARRIVAL, L'E', SMTO_NORMAL, 30'000));
    EXPECT_TRUE(trace.Await("\"" + bilder.Application().string() +
                            "\" module=kestrafetch params mode=select devType=volume priDevId=\"E:\""));
}

TEST_F(Kestractl, ChangesAndStartsNothingIfNoApplicationIsLeft)
{
    // The library would return the devices to the organiser, remove the entry and end the process.
    const LegacyOrganiser organiser;
    const Installation application(L"App");
    Break(application);
    PutText(HKEY_LOCAL_MACHINE, kRun, L"Corvane Kestrafetch", L"\"C:\\gone\\kestraboot.exe\"");
    const std::string shown = Run();
    EXPECT_THAT(shown, HasSubstr("(none: a boot program that finds this ends, and removes the auto-run "
                                 "entry if it may write to HKEY_LOCAL_MACHINE)"));
    EXPECT_THAT(shown, HasSubstr("An arrival  starts nothing\n"));
    EXPECT_THAT(shown,
                HasSubstr("Auto-run    \"C:\\gone\\kestraboot.exe\"\n            a file that does not "
                          "exist\n"));
    EXPECT_THAT(shown, HasSubstr("Organiser   Corvane Vellumry 3.0, " +
                                 organiser.DeviceConnect().string() + "\n"));
    EXPECT_THAT(organiser.Orders(), testing::IsEmpty());
}

TEST_F(Kestractl, CountsTheOrganiserAsASecondApplication)
{
    const LegacyOrganiser organiser;
    const Installation application(L"App");
    EXPECT_THAT(Run(), HasSubstr("An arrival  starts App in mode select\n"));
    EXPECT_THAT(organiser.Orders(), testing::IsEmpty());
}

TEST_F(Kestractl, ShowsAnEmptyRegistry)
{
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane");
    ::RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    EXPECT_EQ(WithoutBuild(Run(L"--json")),
              "{\"type\":\"report\",\"schema\":1,\"applications\":[],\"leftOut\":[],"
              "\"defaults\":[],\"arrivalStarts\":null,\"cardStarts\":null,"
              "\"autoRun\":null,\"organiser\":null}\n");
}

TEST_F(Kestractl, FindsTheKeysThatTheLibraryPassesOver)
{
    const Installation application(L"App");
    const std::wstring root = L"SOFTWARE\\Corvane\\";
    PutText(HKEY_LOCAL_MACHINE, root + L"Case\\corvane kestrafetch", L"Name", L"Case");
    PutText(HKEY_LOCAL_MACHINE, application.KeyPath() + L"\\Corvane Kestrafetch", L"Name", L"Below");
    PutText(HKEY_LOCAL_MACHINE, root + L"Kept\\Corvane Kestrafetch", L"Name", L"Kept");
    PutText(HKEY_LOCAL_MACHINE, root + L"Kept\\Corvane Kestrafetch", L"CmdLine",
            application.Application().wstring());
    PutText(HKEY_LOCAL_MACHINE, root + L"Kept\\Corvane Kestrafetch", L"ProxyPath",
            application.Proxy().wstring());
    PutDword(HKEY_CURRENT_USER, root + L"Kept\\Corvane Kestrafetch\\Preferences",
             L"AutoLaunchOnDeviceConnect", 1);
    PutText(HKEY_LOCAL_MACHINE, root + L"M" + std::wstring(127, L'm'), L"", L"");
    PutText(HKEY_LOCAL_MACHINE, root + L"Z\\Corvane Kestrafetch", L"Name", L"Behind");
    const std::string json = Run(L"--json");
    const auto reasonOf = [&](const std::string& name) {
        const std::size_t at = json.find("{\"name\":\"" + name + "\"");
        const std::size_t reason = json.find("\"reason\":\"", at);
        return at == std::string::npos
                   ? ""
                   : json.substr(reason + 10, json.find('"', reason + 10) - reason - 10);
    };
    EXPECT_EQ(reasonOf("Case"), "key-name-in-other-case");
    EXPECT_EQ(reasonOf("Below"), "below-another");
    EXPECT_EQ(reasonOf("Kept"), "kept-out");
    EXPECT_EQ(reasonOf("Behind"), "behind-long-name");
    EXPECT_THAT(WithoutBuild(json),
                StartsWith("{\"type\":\"report\",\"schema\":1,\"applications\":[{\"name\":\"App\","));
}

TEST_F(Kestractl, KeepsNamesOfOtherLanguages)
{
    const Installation application(L"App");
    PutText(HKEY_LOCAL_MACHINE, application.KeyPath(), L"Name", L"B\u00fccher \u20ac \"1\"");
    EXPECT_THAT(Run(L"--json"), HasSubstr("{\"name\":\"B\xC3\xBC"
                                          "cher \xE2\x82\xAC \\\"1\\\"\""));
}

TEST_F(Kestractl, ShowsTheSearchDepthThatTheLibraryUses)
{
    const Installation application(L"App");
    const std::pair<std::uint32_t, const char*> depths[] = {
        {0x7FFFFFFF, "2147483647"}, {0x80000000, "4"}, {0xFFFFFFFF, "null"}};
    for (const auto& [stored, shown] : depths) {
        PutDword(HKEY_CURRENT_USER, application.KeyPath(), L"SniffDepth", stored);
        EXPECT_THAT(Run(L"--json"), HasSubstr(std::string("\"sniffDepth\":") + shown + "}"));
    }
}

TEST_F(Kestractl, RefusesBadArguments)
{
    for (const wchar_t* const arguments : {L"--jsn", L"applications", L"--json x"}) {
        EXPECT_THAT(Run(arguments, 2), AllOf(StartsWith("kestractl: not understood: "),
                                             HasSubstr("usage: kestractl [--json]")));
    }
    EXPECT_THAT(Run(L"--help"), StartsWith("usage: kestractl "));
}

TEST_F(Kestractl, PrintsItsVersionAndBuild)
{
    const std::string version = VersionText("kestractl");
    EXPECT_EQ(Run(L"--version"), version);
    const std::pair<const wchar_t*, DWORD> runs[] = {{L"--json", 0}, {L"--check --json", 4}};
    for (const auto& [arguments, exitCode] : runs) {
        const nlohmann::json build = nlohmann::json::parse(Run(arguments, exitCode))["build"];
        EXPECT_EQ("kestractl " + build["version"].get<std::string>() + "\ncommit " +
                      build["commit"].get<std::string>() + "\ncompiler " +
                      build["compiler"].get<std::string>() + "\nruntime " +
                      build["runtime"].get<std::string>() + "\n",
                  version);
    }
}

TEST_F(Kestractl, HelpGoesToStandardOutputAndErrorsDoNot)
{
    const auto standardOutput = [](const wchar_t* arguments) {
        ChildProcess tool(BuiltPrograms() / "kestractl.exe", arguments, WritesOn::FileAlone);
        tool.ExitCode();
        return tool.Output();
    };
    EXPECT_THAT(standardOutput(L"--help"), StartsWith("usage: kestractl "));
    EXPECT_EQ(standardOutput(L"--jsn"), "");
}

TEST_F(Kestractl, ChangesNothingIfItsOutputCannotBeWritten)
{
    const Installation application(L"App");
    const std::vector<std::string> before = RegistryDump();
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    ASSERT_TRUE(::CreatePipe(&readEnd, &writeEnd, &inherited, 0));
    ::CloseHandle(readEnd); // there is no reader
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    std::wstring line = L"\"" + (BuiltPrograms() / "kestractl.exe").wstring() + L"\"";
    PROCESS_INFORMATION tool = {};
    ASSERT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                 &startup, &tool));
    ::WaitForSingleObject(tool.hProcess, 30'000);
    DWORD code = 99;
    ::GetExitCodeProcess(tool.hProcess, &code);
    EXPECT_EQ(code, 1U);
    EXPECT_EQ(RegistryDump(), before);
    for (const HANDLE handle : {writeEnd, tool.hThread, tool.hProcess}) {
        ::CloseHandle(handle);
    }
}

} // namespace
} // namespace kestraboot::tests
