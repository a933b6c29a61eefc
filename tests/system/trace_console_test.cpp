// The live trace viewer in a console of its own.
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

constexpr WORD kRed = FOREGROUND_RED | FOREGROUND_INTENSITY;
constexpr WORD kYellow = FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_INTENSITY;

/// A console shared by this process and the viewer.
class TraceConsole : public testing::Test
{
protected:
    TraceConsole()
    {
        ::FreeConsole();
        made = ::AllocConsole() != FALSE;
        screen = ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    ~TraceConsole() override
    {
        ::TerminateProcess(viewer.hProcess, 0);
        ::WaitForSingleObject(viewer.hProcess, 30'000);
        ::CloseHandle(viewer.hThread);
        ::CloseHandle(viewer.hProcess);
        ::CloseHandle(screen);
        ::FreeConsole();
    }

    void Start(const std::wstring& arguments)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput =
            ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          &inherited, OPEN_EXISTING, 0, nullptr);
        startup.hStdError = startup.hStdOutput;
        std::wstring line = L"\"" + (BuiltPrograms() / "kestratrace.exe").wstring() + L"\" " + arguments;
        EXPECT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                     &startup, &viewer))
            << "error " << ::GetLastError();
        ::CloseHandle(startup.hStdOutput);
        EXPECT_TRUE(AwaitReader());
    }

    /// The colours of the first character of that text on the screen; 0 if it does not appear.
    WORD ColoursOf(const std::wstring& text) const
    {
        for (const ULONGLONG end = ::GetTickCount64() + 30'000; ::GetTickCount64() < end; ::Sleep(10)) {
            for (SHORT row = 0; row < 20; ++row) {
                wchar_t characters[121] = {};
                WORD colours[120] = {};
                DWORD read = 0;
                ::ReadConsoleOutputCharacterW(screen, characters, 80, {0, row}, &read);
                ::ReadConsoleOutputAttribute(screen, colours, 80, {0, row}, &read);
                const std::size_t at = std::wstring(characters).find(text);
                if (at != std::wstring::npos) {
                    return colours[at];
                }
            }
        }
        return 0;
    }

    PROCESS_INFORMATION viewer = {};
    bool made = false;
    HANDLE screen = INVALID_HANDLE_VALUE;
};

TEST_F(TraceConsole, ShowsFailuresInRed)
{
    ASSERT_TRUE(made);
    Start(L"");
    ::OutputDebugStringW(L"<KestraBoot><!!! bad>");
    EXPECT_EQ(ColoursOf(L"<!!! bad>") & 0xF, kRed);
    EXPECT_NE(ColoursOf(L"<KestraBoot>") & 0xF, kRed);
}

TEST_F(TraceConsole, ShowsTheCommandLineOfAStartInYellow)
{
    ASSERT_TRUE(made);
    Start(L"");
    ::OutputDebugStringW(L"\"C:\\a.exe\" module=kestrafetch params mode=direct");
    EXPECT_EQ(ColoursOf(L"\"C:\\a.exe\" module") & 0xF, kYellow);
}

TEST_F(TraceConsole, KeepsItsOwnColoursOnRequest)
{
    ASSERT_TRUE(made);
    CONSOLE_SCREEN_BUFFER_INFO own = {};
    ASSERT_TRUE(::GetConsoleScreenBufferInfo(screen, &own));
    Start(L"--no-color");
    ::OutputDebugStringW(L"<KestraBoot><!!! bad>");
    EXPECT_EQ(ColoursOf(L"<!!! bad>"), own.wAttributes);
    EXPECT_EQ(ColoursOf(L"<KestraBoot>"), own.wAttributes);
}

TEST_F(TraceConsole, KeepsItsOwnColoursIfTheEnvironmentAsksForNone)
{
    ASSERT_TRUE(made);
    CONSOLE_SCREEN_BUFFER_INFO own = {};
    ASSERT_TRUE(::GetConsoleScreenBufferInfo(screen, &own));
    ::SetEnvironmentVariableW(L"NO_COLOR", L"1");
    Start(L"");
    ::SetEnvironmentVariableW(L"NO_COLOR", nullptr);
    ::OutputDebugStringW(L"<KestraBoot><!!! bad>");
    EXPECT_EQ(ColoursOf(L"<!!! bad>"), own.wAttributes);
}

TEST_F(TraceConsole, EndsCleanlyWhenItIsInterrupted)
{
    ASSERT_TRUE(made);
    Start(L"--arrivals");
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>");
    // Goes to every program of the console; this one ignores it.
    ASSERT_TRUE(::SetConsoleCtrlHandler(nullptr, TRUE));
    ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
    EXPECT_EQ(::WaitForSingleObject(viewer.hProcess, 30'000), WAIT_OBJECT_0);
    DWORD code = 99;
    ::GetExitCodeProcess(viewer.hProcess, &code);
    EXPECT_EQ(code, 0U);
    EXPECT_NE(ColoursOf(L"undecided"), 0) << "an undecided device is reported";
    ::SetConsoleCtrlHandler(nullptr, FALSE);
}

} // namespace
} // namespace kestraboot::tests
