// The claim, and the executable's folder.
#include "tests/launcher/control_fixture.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/handle_count.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

TEST_F(Control, IsTakenOnceAndHeldOpen)
{
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kNoOemFile, kOrganiserStopped}));
    EXPECT_TRUE(Claimed());
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::current_path(), folder.Path()));
}

TEST_F(Control, IsRefusedASecondTimeInTheSameProcess)
{
    ASSERT_TRUE(Take());
    const HANDLE claim = created;
    events.clear();
    EXPECT_FALSE(Take());
    EXPECT_EQ(events, (Events{kOtherRuns, kOrganiserStopped}));
    EXPECT_TRUE(Claimed()); // the first claim holds
    created = claim;
}

TEST_F(Control, ThatIsRefusedLeavesNoHandleOpenAndTheCurrentFolderUnchanged)
{
    ASSERT_TRUE(Take());
    const HANDLE claim = created;
    std::filesystem::current_path(folderAtStart);
    EXPECT_EQ(HandlesLeftBy([&] {
                  EXPECT_FALSE(Take());
              }),
              0);
    EXPECT_EQ(std::filesystem::current_path(), folderAtStart);
    created = claim;
}

TEST_F(Control, LeavesOneHandleOpenForTheClaim)
{
    EXPECT_EQ(HandlesLeftBy([&] {
                  EXPECT_TRUE(Take());
                  ::CloseHandle(created);
              }),
              0);
}

TEST_F(Control, IsTakenIfTheFolderIsGone)
{
    const FAKE_IMPORT(SetCurrentDirectoryW) set([](const wchar_t*) -> BOOL {
        return TRUE;
    });
    executable = (folder.Path() / L"gone" / L"kestraboot.exe").wstring();
    EXPECT_TRUE(Take());
    EXPECT_EQ(set.Calls(), 0);
    EXPECT_EQ(events, (Events{kTookControl, kNoOemFile, kOrganiserStopped}));
    EXPECT_EQ(std::filesystem::current_path(), folderAtStart);
}

TEST_F(Control, IsTakenIfTheFolderIsAFile)
{
    folder.AddFile(L"file");
    executable = (folder.Path() / L"file" / L"kestraboot.exe").wstring();
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kNoOemFile, kOrganiserStopped}));
}

TEST_F(Control, ReadsTheOemFileOfTheOldFolderIfTheNewOneCannotBeSet)
{
    const TempFolder old;
    old.AddFile(L"OEM/album.ini", "[KestraProxyStopInstall]\r\n1\r\n");
    std::filesystem::current_path(old.Path());
    const FAKE_IMPORT(SetCurrentDirectoryW) set([&](const wchar_t* path) -> BOOL {
        EXPECT_EQ(std::filesystem::path(path), folder.Path());
        return FALSE;
    });
    EXPECT_FALSE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kOemFile, kOption, kStopping}));
    EXPECT_EQ(set.Calls(), 1);
    std::filesystem::current_path(folderAtStart);
}

TEST_F(Control, IsTakenByAProcessThatCannotOpenItself)
{
    const FAKE_IMPORT(OpenProcess) refused([](auto...) -> HANDLE {
        return nullptr;
    });
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kNoOemFile, kOrganiserStopped}));
    EXPECT_EQ(std::filesystem::current_path(), folderAtStart);
}

TEST_F(Control, IsTakenByAnExecutableWithAPathOfAnyLength)
{
    for (const std::size_t length : {0U, 1U, 258U, 259U, 260U, 261U, 32767U}) {
        executable = std::wstring(length, L'k');
        events.clear();
        EXPECT_TRUE(Take());
        EXPECT_EQ(events, (Events{kTookControl, kNoOemFile, kOrganiserStopped})) << length;
        ::CloseHandle(created);
    }
}

TEST_F(Control, StopsNoOrganiserThatIsNotInstalled)
{
    RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE");
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kNoOemFile}));
}

TEST_F(Control, IsGivenUpWhenMemoryRunsOut)
{
    // The recorders would need memory, so calls that do nothing replace them.
    const ImportPatch quiet(
        "OutputDebugStringW",
        reinterpret_cast<void*>(static_cast<void (*)(const wchar_t*)>([](const wchar_t*) {})));
    using Spawn = std::intptr_t (*)(int, const wchar_t*, const wchar_t*, const wchar_t*);
    const ImportPatch nothing(
        "_wspawnlp", reinterpret_cast<void*>(static_cast<Spawn>(
                         [](int, const wchar_t*, const wchar_t*, const wchar_t*) -> std::intptr_t {
                             return -1;
                         })));
    executable = L"C:\\k.exe"; // short enough for the test to copy it without memory
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      EXPECT_TRUE(Take());
                      ::CloseHandle(created);
                  },
                  [&](bool threw) {
                      EXPECT_TRUE(threw);
                      EXPECT_FALSE(Claimed());
                  }),
              10);
}

TEST(ControlOfTheMachine, ThatCannotBeClaimedIsLeftToOthers)
{
    const RegistrySandbox sandbox;
    const SpawnRecorder spawns;
    Events events;
    const FAKE_IMPORT(CreateMutexW) mutex([](auto...) -> HANDLE {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    });
    const FAKE_IMPORT(CloseHandle) close([&](HANDLE handle) -> BOOL {
        EXPECT_EQ(handle, nullptr);
        events.push_back(L"close");
        return FALSE;
    });
    const FAKE_IMPORT(OutputDebugStringW) trace([&](const wchar_t* line) {
        events.emplace_back(line);
    });
    EXPECT_FALSE(CKestraBootCommandHandler().TakeControl());
    EXPECT_EQ(events, (Events{L"close", kOtherRuns}));
}

} // namespace
} // namespace kestraboot
