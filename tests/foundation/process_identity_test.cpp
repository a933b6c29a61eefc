#include "foundation/process_identity.h"
#include "tests/support/fake_modules.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/sample_application.h"

#include <gtest/gtest.h>

#include <string_view>

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
    EXPECT_EQ(info.executablePath, OwnExecutablePath()); // in the same case of letters
    EXPECT_NE(info.handle, nullptr);
}

TEST(ProcessIdentity, IsReadThroughAHandleWithFullAccessThatIsThenClosed)
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
    const FakeModuleList fails([](auto...) -> BOOL {
        return FALSE;
    });
    EXPECT_EQ(HandlesLeftBy([] {
                  ProcessInfo info;
                  GetCurrentProcessInfo(info);
              }),
              0);
}

TEST(ProcessIdentity, OfAProcessThatCannotOpenItselfIsLeftUnchanged)
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
    const FakeModuleList fails([](auto...) -> BOOL {
        return FALSE;
    });
    ProcessInfo info = Marked();
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.processId, ::GetCurrentProcessId());
    EXPECT_EQ(info.executablePath, L"");
}

TEST(ProcessIdentity, HasNoPathWhenTheNameCannotBeRead)
{
    const FakeModuleName fails([](auto...) -> DWORD {
        return 0;
    });
    ProcessInfo info = Marked();
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, L"");
}

TEST(ProcessIdentity, AsksForTheFirstModuleAlone)
{
    const FakeModuleList list([&](HANDLE process, HMODULE* modules, DWORD room, DWORD* needed) -> BOOL {
        EXPECT_EQ(room, sizeof(HMODULE));
        return list.CallOriginal(process, modules, room, needed);
    });
    const FakeModuleName name(
        [&](HANDLE process, HMODULE module, wchar_t* path, DWORD capacity) -> DWORD {
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
    // Old systems fill the whole buffer and write no terminator.
    const FakeModuleName endless([](HANDLE, HMODULE, wchar_t* path, DWORD capacity) -> DWORD {
        EXPECT_EQ(capacity, 259U);
        EXPECT_EQ(std::wstring(path, 260), std::wstring(260, L'\0'));
        std::wmemset(path, L'p', capacity);
        return capacity;
    });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, std::wstring(259, L'p'));
}

TEST(ProcessIdentity, IsReadThroughKernel32Alone)
{
    const FAKE_IMPORT(LoadLibraryW) loads([](const wchar_t*) -> HMODULE {
        return nullptr;
    });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, OwnExecutablePath());
    EXPECT_EQ(loads.Calls(), 0);
}

/// Windows Vista: kernel32 exports neither function; psapi.dll exports both, under other names.
TEST(ProcessIdentity, IsReadThroughPsapiIfKernel32LacksTheFunctions)
{
    const FAKE_IMPORT(GetProcAddress) finds([&](HMODULE library, const char* name) -> FARPROC {
        return std::string_view(name).starts_with("K32") ? nullptr : finds.CallOriginal(library, name);
    });
    std::vector<HMODULE> loaded;
    const FAKE_IMPORT(LoadLibraryW) loads([&](const wchar_t* name) -> HMODULE {
        EXPECT_STREQ(name, L"psapi.dll");
        return loaded.emplace_back(loads.CallOriginal(name));
    });
    std::vector<HMODULE> freed;
    const FAKE_IMPORT(FreeLibrary) frees([&](HMODULE library) -> BOOL {
        freed.push_back(library);
        return frees.CallOriginal(library);
    });
    ProcessInfo info;
    GetCurrentProcessInfo(info);
    EXPECT_EQ(info.executablePath, OwnExecutablePath());
    EXPECT_EQ(loaded.size(), 1U);
    EXPECT_EQ(freed, loaded);
}

TEST(ProcessIdentity, HasNoPathIfNoLibraryHasTheFunctions)
{
    const FAKE_IMPORT(GetProcAddress) finds([](HMODULE library, const char*) -> FARPROC {
        EXPECT_NE(library, nullptr) << "without a library the program itself would be searched";
        return nullptr;
    });
    for (const bool hasPsapi : {true, false}) {
        const FAKE_IMPORT(LoadLibraryW) loads([&](const wchar_t* name) -> HMODULE {
            return hasPsapi ? loads.CallOriginal(name) : nullptr;
        });
        ProcessInfo info = Marked();
        GetCurrentProcessInfo(info);
        EXPECT_EQ(info.processId, ::GetCurrentProcessId());
        EXPECT_EQ(info.executablePath, L"");
    }
}

} // namespace
} // namespace kestraboot
