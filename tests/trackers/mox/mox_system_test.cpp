// The shipped library in a host process of its own, with real plugin files.
#include "tests/support/host_process.h"
#include "tests/support/program_folder.h"
#include "tests/support/temp_folder.h"
#include "tests/system/child_process.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace kestraboot
{
namespace
{

using tests::HostProcess;
using tests::ProgramFolder;

constexpr const char* kNotDetected = "trace <***DeviceConnect***><NOKIA Devices will not be detected.>";

std::string Detecting(const std::string& name)
{
    return "trace <***DeviceConnect***><" + name + "><Devices will be detected.>";
}

bool IsLoaded(HostProcess& host, const std::string& plugin)
{
    host.Send("loaded .\\moxplugins\\" + plugin + ".mox");
    return host.ReadUntil("loaded ") == "loaded yes";
}

/// Runs phone.exe and returns its exit code.
DWORD Phone(const std::wstring& arguments)
{
    return tests::ChildProcess(ProgramFolder() / L"phone.exe", arguments).ExitCode();
}

class PluginsInAHost : public testing::Test
{
protected:
    void Install(const char* built, const std::string& plugin) const
    {
        std::filesystem::create_directories(home.Path() / "moxplugins");
        std::filesystem::copy_file(ProgramFolder() / built,
                                   home.Path() / "moxplugins" / (plugin + ".mox"));
    }
    void InstallPhoneManager() const { Install("nokiamanager.mox", "nokiamanager"); }
    void InstallPlugin(const std::string& plugin) const { Install("test_plugin.mox", plugin); }

    tests::TempFolder home;
};

TEST_F(PluginsInAHost, AreLeftAloneWhileThePhoneManagerIsMissing)
{
    InstallPlugin("other");
    HostProcess host(L"mox_test_host.exe", home.Path());
    for (int minute = 0; minute < 3; ++minute) {
        EXPECT_EQ(host.Read(), kNotDetected);
        EXPECT_EQ(host.Read(), "sleep 60000");
        EXPECT_FALSE(IsLoaded(host, "other"));
        host.Send("wake");
    }
    EXPECT_EQ(host.Read(), kNotDetected);
}

TEST_F(PluginsInAHost, AreLeftAloneWhileThereIsNoFolder)
{
    HostProcess host(L"mox_test_host.exe", home.Path());
    EXPECT_EQ(host.Read(), kNotDetected);
    EXPECT_EQ(host.Read(), "sleep 60000");
    host.Send("wake");
    EXPECT_EQ(host.Read(), kNotDetected);
}

TEST_F(PluginsInAHost, AreFoundAMinuteAfterThePhoneManagerWasInstalled)
{
    InstallPlugin("other");
    HostProcess host(L"mox_test_host.exe", home.Path());
    host.ReadUntil("sleep 60000");
    InstallPhoneManager();
    EXPECT_FALSE(IsLoaded(host, "nokiamanager"));
    host.Send("wake");
    std::set<std::string> detecting = {host.Read(), host.Read()};
    EXPECT_EQ(detecting, (std::set<std::string>{Detecting("Phones"), Detecting("other")}));
    EXPECT_TRUE(IsLoaded(host, "nokiamanager"));
    EXPECT_TRUE(IsLoaded(host, "other"));
}

TEST_F(PluginsInAHost, AreLeftAloneWhileThePhoneManagerIsNoPlugin)
{
    InstallPlugin("other");
    home.AddFile("moxplugins/nokiamanager.mox", "a letter, not a library");
    HostProcess host(L"mox_test_host.exe", home.Path());
    EXPECT_EQ(host.Read(), kNotDetected);
    host.ReadUntil("sleep 60000");
    std::filesystem::remove(home.Path() / "moxplugins" / "nokiamanager.mox");
    std::filesystem::create_directory(home.Path() / "moxplugins" / "nokiamanager.mox");
    host.Send("wake");
    EXPECT_EQ(host.Read(), kNotDetected);
    EXPECT_FALSE(IsLoaded(host, "other"));
}

TEST_F(PluginsInAHost, ReportAPhoneOnceItIsReady)
{
    InstallPhoneManager();
    HostProcess host(L"mox_test_host.exe", home.Path());
    host.ReadUntil(Detecting("Phones"));
    EXPECT_EQ(Phone(L"not-ready \"Phone of Ada\""), 0U);
    EXPECT_EQ(Phone(L"ready \"Phone of Ada\""), 0U);
    EXPECT_EQ(host.Read(), "device mobile Phone of Ada") << "a phone that was not ready was reported";
    EXPECT_EQ(Phone(L"ready \"Phone of Bob\""), 0U);
    EXPECT_EQ(host.Read(), "device mobile Phone of Bob");
}

TEST_F(PluginsInAHost, ContinueAfterACallbackThatThrows)
{
    InstallPhoneManager();
    HostProcess host(L"mox_test_host.exe", home.Path());
    host.ReadUntil(Detecting("Phones"));
    host.Send("throw");
    host.ReadUntil("throws");
    EXPECT_EQ(Phone(L"ready one"), 0U);
    EXPECT_EQ(host.Read(), "device mobile one");
    EXPECT_EQ(Phone(L"ready two"), 0U);
    EXPECT_EQ(host.Read(), "device mobile two");
}

TEST_F(PluginsInAHost, AreBuiltFromTheSample)
{
    InstallPhoneManager();
    Install("sample_plugin.mox", "sample");
    HostProcess host(L"mox_test_host.exe", home.Path());
    host.ReadUntil(Detecting("Sample devices"));
    const HANDLE camera = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, L"KestrabootSampleDevice");
    ASSERT_NE(camera, nullptr);
    for (int count = 0; count < 3; ++count) {
        ::SetEvent(camera);
        host.ReadUntil("device camera Sample camera");
    }
    ::CloseHandle(camera);
}

TEST_F(PluginsInAHost, AreTrackedEvenIfOthersAreBroken)
{
    InstallPhoneManager();
    InstallPlugin("good");
    InstallPlugin("refuses-to-load");
    InstallPlugin("sourceless-1");
    Install("libwinpthread-1.dll", "without-entry-point");
    Install("phone.exe", "program");
    home.AddFile("moxplugins/text.mox", "a letter, not a library");
    home.AddFile("moxplugins/empty.mox");
    home.AddFolder("moxplugins/something.mox");
    HostProcess host(L"mox_test_host.exe", home.Path());
    std::set<std::string> detecting = {host.Read(), host.Read()};
    EXPECT_EQ(detecting, (std::set<std::string>{Detecting("Phones"), Detecting("good")}));
    for (const char* plugin : {"refuses-to-load", "sourceless-1", "without-entry-point", "program",
                               "text", "empty", "something"}) {
        EXPECT_FALSE(IsLoaded(host, plugin)) << plugin;
    }
}

TEST_F(PluginsInAHost, MayBeTwoHundred)
{
    InstallPhoneManager();
    std::set<std::string> expected = {Detecting("Phones")};
    for (int number = 0; number < 200; ++number) {
        const std::string plugin = "plugin" + std::to_string(number);
        InstallPlugin(plugin);
        expected.insert(Detecting(plugin));
    }
    HostProcess host(L"mox_test_host.exe", home.Path());
    std::set<std::string> detecting;
    while (detecting.size() < expected.size()) {
        const std::string line = host.Read();
        EXPECT_TRUE(detecting.insert(line).second) << line << " came twice";
    }
    EXPECT_EQ(detecting, expected);
    EXPECT_EQ(Phone(L"ready among many"), 2U) << "one argument too many";
    EXPECT_EQ(Phone(L"ready \"among many\""), 0U);
    host.ReadUntil("device mobile among many");
}

TEST_F(PluginsInAHost, MayReportFromEightThreadsAtOnce)
{
    InstallPhoneManager();
    InstallPlugin("storm-1");
    InstallPlugin("storm-2");
    HostProcess host(L"mox_test_host.exe", home.Path());
    std::map<std::string, int> next; // the next number of each thread of each plugin
    for (int devices = 0; devices < 1600;) {
        const std::string line = host.Read();
        if (line.starts_with("device audio storm-")) {
            ++devices;
            const std::size_t blank = line.rfind(' ');
            const std::string thread = line.substr(0, blank);
            EXPECT_EQ(std::stoi(line.substr(blank)), next[thread]++) << thread;
        }
    }
    EXPECT_EQ(next.size(), 16U);
    for (const auto& [thread, count] : next) {
        EXPECT_EQ(count, 100) << thread;
    }
}

TEST_F(PluginsInAHost, MayTakeFiveSecondsWithoutHoldingUpTheOthers)
{
    InstallPhoneManager();
    InstallPlugin("slow-1");
    HostProcess host(L"mox_test_host.exe", home.Path());
    EXPECT_EQ(host.Read(), Detecting("Phones"));
    EXPECT_EQ(Phone(L"ready meanwhile"), 0U);
    EXPECT_EQ(host.Read(), "device mobile meanwhile");
    EXPECT_EQ(host.Read(), Detecting("slow-1"));
}

} // namespace
} // namespace kestraboot
