#include "foundation/process_identity.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/sample_application.h"

#include <gtest/gtest.h>

#include <psapi.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

ProcessInfo Marked()
{
    return {77, reinterpret_cast<HANDLE>(std::uintptr_t{0x77}), L"before"};
}

TEST(ProcessIdentity, IsTheRunningExecutable)
{
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.processId, ::GetCurrentProcessId());
    EXPECT_EQ(info.executablePath, OwnExecutablePath()); // the letters' case too
    EXPECT_NE(info.handle, nullptr);
}

TEST(ProcessIdentity, IsReadThroughAHandleWithAllRightsThatIsClosedAgain)
{
    HANDLE opened = nullptr;
    std::vector<HANDLE> closed;
    const FAKE_IMPORT(OpenProcess) open([&](DWORD access, BOOL inherit, DWORD processId) -> HANDLE {
        EXPECT_EQ(access, static_cast<DWORD>(PROCESS_ALL_ACCESS));
        EXPECT_EQ(inherit, FALSE);
        EXPECT_EQ(processId, ::GetCurrentProcessId());
        return opened = open.CallOriginal(access, inherit, processId);
    });
    const FAKE_IMPORT(CloseHandle) close([&](HANDLE handle) -> BOOL {
        closed.push_back(handle);
        return close.CallOriginal(handle);
    });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.handle, opened);
    EXPECT_EQ(closed, std::vector<HANDLE>{opened});
}

TEST(ProcessIdentity, LeavesNoHandleOpen)
{
    EXPECT_EQ(HandlesLeftBy([] {
                  ProcessInfo info;
                  GetCurrentProcessInfo(info);
              }),
              0);
    const FAKE_IMPORT(K32EnumProcessModules) fails([](auto...) -> BOOL {
        return FALSE;
    });
    EXPECT_EQ(HandlesLeftBy([] {
                  ProcessInfo info;
                  GetCurrentProcessInfo(info);
              }),
              0);
}

TEST(ProcessIdentity, OfAProcessThatCannotOpenItselfIsLeftAsItWas)
{
    const FAKE_IMPORT(OpenProcess) refused([](auto...) -> HANDLE {
        return nullptr;
    });
    ProcessInfo info = Marked();
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.processId, 77U);
    EXPECT_EQ(info.handle, Marked().handle);
    EXPECT_EQ(info.executablePath, L"before");
}

TEST(ProcessIdentity, HasNoPathWhenTheModulesCannotBeListed)
{
    const FAKE_IMPORT(K32EnumProcessModules) fails([](auto...) -> BOOL {
        return FALSE;
    });
    ProcessInfo info = Marked();
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.processId, ::GetCurrentProcessId());
    EXPECT_EQ(info.executablePath, L"");
}

TEST(ProcessIdentity, HasNoPathWhenTheNameCannotBeRead)
{
    const FAKE_IMPORT(K32GetModuleFileNameExW) fails([](auto...) -> DWORD {
        return 0;
    });
    ProcessInfo info = Marked();
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, L"");
}

TEST(ProcessIdentity, AsksForTheFirstModuleAlone)
{
    const FAKE_IMPORT(K32EnumProcessModules)
        list([&](HANDLE process, HMODULE* modules, DWORD room, DWORD* needed) -> BOOL {
            EXPECT_EQ(room, sizeof(HMODULE));
            return list.CallOriginal(process, modules, room, needed);
        });
    const FAKE_IMPORT(K32GetModuleFileNameExW)
        name([&](HANDLE process, HMODULE module, wchar_t* path, DWORD capacity) -> DWORD {
            EXPECT_EQ(module, ::GetModuleHandleW(nullptr));
            return name.CallOriginal(process, module, path, capacity);
        });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(list.Calls(), 1);
    EXPECT_EQ(name.Calls(), 1);
}

TEST(ProcessIdentity, CutsALongPathAt259Characters)
{
    // Old systems fill all the room that they are given and leave out the terminator.
    const FAKE_IMPORT(K32GetModuleFileNameExW)
        endless([](HANDLE, HMODULE, wchar_t* path, DWORD capacity) -> DWORD {
            EXPECT_EQ(capacity, 259U);
            EXPECT_EQ(std::wstring(path, 260), std::wstring(260, L'\0'));
            std::wmemset(path, L'p', capacity);
            return capacity;
        });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, std::wstring(259, L'p'));
}

} // namespace
} // namespace kestraboot
