#include "service/console_session.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <string>

namespace kestraboot
{
namespace
{

using tests::FakeImport;

/// Windows as the test sets it: the session of a process, and the session at the console.
class ConsoleSession : public testing::Test
{
protected:
    static DWORD ConsoleSessionNow() { return consoleSession; }

    static inline DWORD consoleSession = 1;
    DWORD processSession = 1;
    bool kernelLoads = true;
    bool exportThere = true;
    bool sessionKnown = true;
    DWORD askedFor = 0;
    int freed = 0;
    std::wstring loaded;
    std::string lookedUp;

    FAKE_IMPORT(LoadLibraryW)
    load{[this](const wchar_t* name) -> HMODULE {
        loaded = name;
        return kernelLoads ? reinterpret_cast<HMODULE>(0x1234) : nullptr;
    }};
    FAKE_IMPORT(GetProcAddress)
    lookUp{[this](HMODULE module, const char* name) -> FARPROC {
        EXPECT_EQ(module, reinterpret_cast<HMODULE>(0x1234));
        lookedUp = name;
        return exportThere ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&ConsoleSessionNow))
                           : nullptr;
    }};
    FAKE_IMPORT(FreeLibrary)
    free{[this](HMODULE module) -> BOOL {
        EXPECT_EQ(module, reinterpret_cast<HMODULE>(0x1234));
        ++freed;
        return TRUE;
    }};
    FAKE_IMPORT(ProcessIdToSessionId)
    toSession{[this](DWORD processId, DWORD* session) -> BOOL {
        askedFor = processId;
        if (!sessionKnown) {
            return FALSE;
        }
        *session = processSession;
        return TRUE;
    }};
};

TEST_F(ConsoleSession, AProcessInItIsRecognised)
{
    consoleSession = processSession = 3;
    EXPECT_TRUE(IsProcessInActiveConsoleSession(4711));
    EXPECT_EQ(askedFor, 4711U);
    EXPECT_EQ(loaded, L"kernel32.dll");
    EXPECT_EQ(lookedUp, "WTSGetActiveConsoleSessionId");
    EXPECT_EQ(freed, 1);
}

TEST_F(ConsoleSession, AProcessInAnotherOneIsNot)
{
    consoleSession = 1;
    processSession = 2;
    EXPECT_FALSE(IsProcessInActiveConsoleSession(4711));
    EXPECT_EQ(freed, 1);
}

TEST_F(ConsoleSession, IsNotKnownWithoutTheLibrary)
{
    kernelLoads = false;
    EXPECT_FALSE(IsProcessInActiveConsoleSession(4711));
    EXPECT_EQ(freed, 0);
}

TEST_F(ConsoleSession, IsNotKnownWithoutTheExport)
{
    exportThere = false;
    EXPECT_FALSE(IsProcessInActiveConsoleSession(4711));
    EXPECT_EQ(freed, 1);
}

TEST_F(ConsoleSession, IsNotKnownWhenTheProcesssSessionIsNot)
{
    consoleSession = processSession = 0; // the buffer of a failed query must not pass for a session
    sessionKnown = false;
    EXPECT_FALSE(IsProcessInActiveConsoleSession(4711));
    EXPECT_EQ(freed, 1);
}

TEST(RealConsoleSession, HoldsThisProcess)
{
    EXPECT_TRUE(IsProcessInActiveConsoleSession(::GetCurrentProcessId()));
    EXPECT_FALSE(IsProcessInActiveConsoleSession(0xFFFFFFF0));
}

} // namespace
} // namespace kestraboot
