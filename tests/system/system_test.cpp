#include "tests/system/system_test.h"

#include "tests/support/registry_sandbox.h"
#include "tests/support/source_file.h"
#include "tests/system/quiet_exit.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace kestraboot::tests
{

std::string VersionText(const std::string& program)
{
    std::ifstream page(FromTheArchive() ? SourceFile("VERSION.txt") : KESTRABOOT_VERSION_PAGE,
                       std::ios::binary);
    std::string name;
    page >> name;
    return program + std::string(std::istreambuf_iterator<char>(page), {});
}

void SystemTest::SetWindowsVersion(const std::wstring& program, const std::wstring& version)
{
    PutText(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\" + program, L"Version", version);
}

void SystemTest::AwaitTrackers(const std::vector<std::string>& lines) const
{
    for (const std::string& line : lines) {
        EXPECT_TRUE(trace.Await(line)) << line;
    }
}

void SystemTest::Quit(ChildProcess& boot)
{
    const HWND window = AwaitWindow(boot.Id(), kBootTitle);
    ASSERT_NE(window, nullptr);
    // Once its tracker has answered, the thread waits for messages, not for a drive.
    if (const HWND tracker = AwaitWindow(boot.Id(), kVolumeWindow, 0)) {
        DWORD_PTR answer = 0;
        EXPECT_NE(::SendMessageTimeoutW(tracker, WM_NULL, 0, 0, SMTO_NORMAL, 30'000, &answer), 0);
    }
    SuspendThreadsBeside(window);
    ::SendMessageW(window, WM_QUIT, 0, 0);
    EXPECT_EQ(boot.ExitCode(), kDone);
}

void SystemTest::EndServing()
{
    HWND window = nullptr;
    ASSERT_TRUE(Within(30'000, [&window] {
        window = ::FindWindowW(nullptr, kBootTitle.c_str());
        return window != nullptr;
    })) << "no boot program is in control";
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    const HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, processId);
    SuspendThreadsBeside(window);
    ::SendMessageW(window, WM_QUIT, 0, 0);
    EXPECT_EQ(::WaitForSingleObject(process, 30'000), WAIT_OBJECT_0);
    ::CloseHandle(process);
}

testing::AssertionResult SystemTest::AwaitOrders(const LegacyOrganiser& organiser,
                                                 const std::vector<std::string>& orders)
{
    // In any order, because each is a program of its own and reports when it gets to run.
    if (Within(20'000,
               [&] {
                   return organiser.Orders().size() >= orders.size();
               }) &&
        std::ranges::is_permutation(organiser.Orders(), orders)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "the organiser was started with " << testing::PrintToString(organiser.Orders()) << ", not "
           << testing::PrintToString(orders);
}

} // namespace kestraboot::tests
