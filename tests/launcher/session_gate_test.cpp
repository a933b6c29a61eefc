// The Windows versions that let a process start an application outside the console session.
#include "tests/launcher/fake_windows.h"
#include "tests/launcher/launch_fixture.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kRefused = L"<KestraBoot><!!! Unable to launch Kestra.>";

struct Gate {
    FakeWindows::Version version;
    bool startsWithDevice; ///< outside the console session
    bool startsWithout;
};

struct SessionGate : Launch, testing::WithParamInterface<Gate> {
    bool Starts(const wchar_t* id)
    {
        const std::size_t before = spawns.Calls().size();
        trace.Clear();
        Kestra(L"v.exe", L"direct", L"volume", id);
        const bool started = spawns.Calls().size() > before;
        EXPECT_EQ(trace.Lines().size(), 1U);
        EXPECT_EQ(trace.Count(kRefused), started ? 0 : 1);
        return started;
    }
};

TEST_P(SessionGate, OutsideTheConsoleSessionDependsOnTheWindowsVersion)
{
    const FakeWindows windows(GetParam().version, false);
    EXPECT_EQ(Starts(L"E:"), GetParam().startsWithDevice);
    EXPECT_EQ(Starts(L""), GetParam().startsWithout);
}

TEST_P(SessionGate, InTheConsoleSessionIsOpen)
{
    const FakeWindows windows(GetParam().version, true);
    EXPECT_TRUE(Starts(L"E:"));
    EXPECT_TRUE(Starts(L""));
}

INSTANTIATE_TEST_SUITE_P(
    OfEachRelease, SessionGate,
    testing::Values(
        Gate{kWindows2000, true, true}, Gate{kWindowsXp, false, false}, Gate{kWindowsVista, false, true},
        Gate{kWindows7, true, true}, Gate{{5, 2}, true, true}, Gate{{6, 2}, true, true},
        Gate{{10, 0}, true, true}, Gate{{4, 0}, true, true}, Gate{{7, 0}, true, true},
        Gate{{6, 0, VER_NT_SERVER}, true, true}, Gate{{6, 0, VER_NT_DOMAIN_CONTROLLER}, true, true},
        Gate{{5, 1, VER_NT_SERVER}, false, false}, // the product type counts for 6.0 only
        Gate{{5, 1, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_WINDOWS}, true, true},
        Gate{{6, 0, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_WINDOWS}, true, true},
        Gate{{5, 1, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_NT, 1}, false, false},
        Gate{{5, 0, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_NT, 1}, true, true},
        Gate{{6, 0, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_NT, 1}, true, true}, // without a product type
        Gate{{5, 1, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_NT, 2}, true, true},
        Gate{{6, 0, VER_NT_WORKSTATION, VER_PLATFORM_WIN32_NT, 2}, true, true}));

void PrintTo(const Gate& gate, std::ostream* out)
{
    PrintTo(gate.version, out);
}

struct UnknownSession : SessionGate {
    FakeWindows windows{kWindowsXp, true};
};

TEST_F(UnknownSession, IsNotTheConsolesIfTheLibraryCannotBeLoaded)
{
    const FAKE_IMPORT(LoadLibraryW) load([](const wchar_t* name) -> HMODULE {
        EXPECT_STREQ(name, L"kernel32.dll");
        return nullptr;
    });
    const FAKE_IMPORT(FreeLibrary) unload([](HMODULE) -> BOOL {
        return TRUE;
    });
    EXPECT_FALSE(Starts(L"E:"));
    EXPECT_EQ(load.Calls(), 1);
    EXPECT_EQ(unload.Calls(), 0);
}

TEST_F(UnknownSession, IsNotTheConsolesOnAWindowsWithoutTheFunction)
{
    const FAKE_IMPORT(GetProcAddress) find([](HMODULE, const char* name) -> FARPROC {
        EXPECT_STREQ(name, "WTSGetActiveConsoleSessionId");
        return nullptr;
    });
    const FAKE_IMPORT(FreeLibrary) unload([&](HMODULE module) -> BOOL {
        return unload.CallOriginal(module);
    });
    EXPECT_FALSE(Starts(L"E:"));
    EXPECT_EQ(unload.Calls(), 1);
}

TEST_F(Launch, OutsideTheConsoleSessionIsCheckedAtEachLaunch)
{
    std::vector<bool> started;
    for (const bool console : {true, false, true}) {
        const FakeWindows windows(kWindowsXp, console);
        const std::size_t before = spawns.Calls().size();
        Kestra(L"v.exe", L"direct", L"volume", L"E:");
        started.push_back(spawns.Calls().size() > before);
    }
    EXPECT_EQ(started, (std::vector<bool>{true, false, true}));
}

TEST_F(Launch, WithoutAModeDoesNotAskWindows)
{
    const FAKE_IMPORT(GetVersionExW) version([](auto...) -> BOOL {
        return FALSE;
    });
    Kestra(L"v.exe", L"", L"volume", L"E:");
    EXPECT_EQ(version.Calls(), 0);
}

TEST(UnknownSessionOfAProcess, IsNotTheConsoles)
{
    const SpawnRecorder spawns;
    const TraceRecorder trace;
    const FAKE_IMPORT(GetVersionExW) version([](OSVERSIONINFOW* record) -> BOOL {
        record->dwMajorVersion = 5;
        record->dwMinorVersion = 1;
        record->dwPlatformId = VER_PLATFORM_WIN32_NT;
        return TRUE;
    });
    const FAKE_IMPORT(ProcessIdToSessionId) session([](DWORD, DWORD* sessionId) -> BOOL {
        *sessionId = ::WTSGetActiveConsoleSessionId();
        return FALSE;
    });
    std::wstring text = L"x";
    CKestraBootCommandHandler().LaunchKestra(text, text, text, text);
    EXPECT_EQ(trace.Lines(), Lines{kRefused});
}

} // namespace
} // namespace kestraboot
