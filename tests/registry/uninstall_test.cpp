#include "tests/registry/fake_processes.h"
#include "tests/registry/handler.h"
#include "tests/support/format_failure.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <process.h>
#include <shlwapi.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Events = std::vector<std::wstring>;

constexpr const wchar_t* kOrganiserStarted = L"start C:\\Legacy\\VellumryDeviceConnect.exe -i";
constexpr const wchar_t* kNoAutoRun =
    L"<KESTRABOOT><Deleting run key. Auto run is going to discontinue from now onwards.>";
const Events kOneStopped = {L"ask windows", L"wait 2000", L"end 7 with 0", L"wait 2000"};

struct HandOver : testing::Test {
    HandOver()
        : own(RegisterOwnSample(folder.Path(), L"Own")),
          machine({{7, OwnExecutablePath()}, {8, L"C:\\other.exe"}}, OwnExecutablePath()),
          trace([this](const wchar_t* line) {
              machine.events.emplace_back(line);
          }),
          deletion([this](HKEY key, const wchar_t* name) -> LONG {
              machine.events.push_back(L"delete " + std::wstring(name));
              return deletion.CallOriginal(key, name);
          })
    {
        PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L"before");
        spawns.OnSpawn([this](const SpawnCall& call) {
            machine.events.push_back(L"start " + call.file +
                                     (call.arguments.size() > 1 ? L' ' + call.arguments[1] : L""));
        });
    }
    static auto RunValue() { return StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue); }

    /// Runs after the one other instance was stopped.
    Events EventsAfterStop()
    {
        handler.Uninstall();
        EXPECT_EQ(Events(machine.events.begin(), machine.events.begin() + 4), kOneStopped);
        return {machine.events.begin() + 4, machine.events.end()};
    }

    RegistrySandbox sandbox;
    TempFolder folder;
    SampleApplication own;
    SpawnRecorder spawns;
    FakeProcesses machine;
    FAKE_IMPORT(OutputDebugStringW) trace;
    FAKE_IMPORT(RegDeleteValueW) deletion;
    OpenHandler handler;
};

TEST_F(HandOver, StartsTheNextApplicationsProxy)
{
    const SampleApplication next = RegisterSample(folder.Path(), L"Next");
    RegisterSample(folder.Path(), L"Third");
    EXPECT_EQ(EventsAfterStop(),
              (Events{L"start " + next.proxyPath,
                      L"<KestraBoot><Switching application to ...<Next><" + next.proxyPath + L"> >"}));
    EXPECT_EQ(spawns.Calls(),
              (std::vector<SpawnCall>{{_P_NOWAIT, next.proxyPath, {L'"' + next.proxyPath + L'"'}}}));
    // The entry still names the running proxy. The next proxy will write its own path.
    EXPECT_EQ(RunValue(), L'"' + own.proxyPath + L'"');
}

TEST_F(HandOver, PassesOverAProxyThatVanished)
{
    const SampleApplication gone = RegisterSample(folder.Path(), L"Gone");
    const SampleApplication next = RegisterSample(folder.Path(), L"Next");
    bool loaded = false;
    const FAKE_IMPORT(PathFileExistsW) exists([&](const wchar_t* path) -> BOOL {
        if (path != gone.proxyPath || !loaded) {
            loaded = loaded || path == gone.proxyPath;
            return TRUE;
        }
        return FALSE;
    });
    EXPECT_EQ(EventsAfterStop().at(0), L"start " + next.proxyPath);
}

TEST(HandOverFromTwoInstances, WaitsForEachOfThemAndOnceMore)
{
    const RegistrySandbox sandbox;
    const TempFolder folder;
    RegisterOwnSample(folder.Path(), L"Own");
    const SpawnRecorder spawns;
    FakeProcesses machine({{7, OwnExecutablePath()}, {8, OwnExecutablePath()}}, OwnExecutablePath());
    const FAKE_IMPORT(OutputDebugStringW) trace([](const wchar_t*) {});
    CKestraBootInformationHandler().Uninstall();
    EXPECT_EQ(machine.events, (Events{L"ask windows", L"wait 2000", L"end 7 with 0", L"ask windows",
                                      L"wait 2000", L"end 8 with 0", L"wait 2000"}));
}

TEST_F(HandOver, DoesNotQuoteAPathThatBeginsWithAQuote)
{
    const SampleApplication next = RegisterSample(folder.Path(), L"Next");
    PutText(HKEY_LOCAL_MACHINE, next.keyPath, L"ProxyPath", L"\"C:\\q.exe\"");
    const FAKE_IMPORT(PathFileExistsW) exists([](const wchar_t*) -> BOOL {
        return TRUE;
    });
    handler.Uninstall();
    EXPECT_EQ(spawns.Calls(),
              (std::vector<SpawnCall>{{_P_NOWAIT, L"\"C:\\q.exe\"", {L"\"C:\\q.exe\""}}}));
}

TEST_F(HandOver, IsTracedEvenIfTheStartFails)
{
    RegisterSample(folder.Path(), L"Next");
    spawns.Answer(-1);
    EXPECT_EQ(EventsAfterStop().size(), 2U);
    EXPECT_EQ(spawns.Calls().size(), 1U);
}

TEST_F(HandOver, LeavesNoHandleOfTheStartedProxy)
{
    RegisterSample(folder.Path(), L"Next");
    const HANDLE process = ::CreateMutexW(nullptr, FALSE, nullptr); // stands for the process
    spawns.Answer(reinterpret_cast<std::intptr_t>(process));
    handler.Uninstall();
    DWORD flags = 0;
    EXPECT_FALSE(::GetHandleInformation(process, &flags));
}

TEST_F(HandOver, CutsItsTraceLineAt259Characters)
{
    const SampleApplication next = RegisterSample(folder.Path(), L"Next");
    PutText(HKEY_LOCAL_MACHINE, next.keyPath, L"Name", std::wstring(1000, L'n'));
    const Events events = EventsAfterStop();
    EXPECT_EQ(events.at(1),
              (L"<KestraBoot><Switching application to ...<" + std::wstring(1000, L'n')).substr(0, 259));
}

TEST_F(HandOver, TracesAnEmptyLineIfItsLineCannotBeFormatted)
{
    RegisterSample(folder.Path(), L"Next");
    const FormatFailure fails;
    handler.Uninstall();
    EXPECT_EQ(machine.events.back(), L"");
}

TEST_F(HandOver, WithNothingButTheOwnApplicationReturnsTheDevicesToTheOrganiser)
{
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_EQ(EventsAfterStop(), (Events{kOrganiserStarted, L"delete Corvane Kestrafetch", kNoAutoRun}));
    EXPECT_EQ(RunValue(), std::nullopt);
}

TEST_F(HandOver, WithoutAnyApplicationEndsTheAutoRun)
{
    EXPECT_EQ(EventsAfterStop(), (Events{L"delete Corvane Kestrafetch", kNoAutoRun}));
}

TEST_F(HandOver, PassesOverASecondKeyOfTheOwnProxyInAnotherCase)
{
    const SampleApplication twin = RegisterOwnSample(folder.Path(), L"Twin");
    std::wstring other = twin.proxyPath;
    other[0] = static_cast<wchar_t>(other[0] ^ 0x20);
    PutText(HKEY_LOCAL_MACHINE, twin.keyPath, L"ProxyPath", other);
    EXPECT_EQ(EventsAfterStop(), (Events{L"delete Corvane Kestrafetch", kNoAutoRun}));
}

TEST(HandOverWithoutAnotherInstance, DoesNothing)
{
    const RegistrySandbox sandbox;
    const TempFolder folder;
    RegisterOwnSample(folder.Path(), L"Own");
    RegisterSample(folder.Path(), L"Next");
    RegisterOrganiser(L"C:\\Legacy");
    PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L"before");
    SpawnRecorder spawns;
    FakeProcesses machine({{8, L"C:\\other.exe"}}, OwnExecutablePath());
    const FAKE_IMPORT(OutputDebugStringW) trace([&](const wchar_t* line) {
        machine.events.emplace_back(line);
    });
    OpenHandler handler;
    handler.Uninstall();
    EXPECT_EQ(machine.events, Events{});
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue), L"before");
    EXPECT_EQ(handler.Names(), Names{}); // the handler did not load
    EXPECT_EQ(machine.LeftOpen(), std::set<DWORD>{});
}

TEST_F(HandOver, OfAnEmptyRegistryEndsTheProcess)
{
    const ProcessEndCatcher catcher;
    RemoveKey(HKEY_LOCAL_MACHINE, kRoot);
    UINT exitCode = 99;
    try {
        handler.Uninstall();
    } catch (const ProcessEnded& ended) {
        exitCode = ended.exitCode;
    }
    EXPECT_EQ(exitCode, 0U);
    Events expected = kOneStopped;
    expected.insert(
        expected.end(),
        {L"<KestraBoot><!!! No Kestra Compatible application found. This situation should be avoided.>",
         L"delete Corvane Kestrafetch",
         L"<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>"});
    EXPECT_EQ(machine.events, expected);
}

} // namespace
} // namespace kestraboot
