// A program that does not stop itself: it has no watchdog, and a child process.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

namespace
{

TEST(Hang, WithAChildThatHangsToo)
{
    wchar_t program[1024] = {};
    ::GetModuleFileNameW(nullptr, program, 1023);
    std::wstring line = L"\"" + std::wstring(program) + L"\" --gtest_filter=Hang.WithAChildThatHangsToo";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    if (::GetEnvironmentVariableW(L"KESTRABOOT_PLANTED_CHILD", nullptr, 0) == 0) {
        ::SetEnvironmentVariableW(L"KESTRABOOT_PLANTED_CHILD", L"1");
        ASSERT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                     &startup, &child));
    }
    ::Sleep(INFINITE);
}

TEST(Hang, Passes) {}

/// Ends the program with an exit code that contradicts its tests.
class BadEnd : public testing::Environment
{
public:
    void TearDown() override
    {
        std::fflush(stdout);
        ::TerminateProcess(::GetCurrentProcess(), 5);
    }
};

const testing::Environment* const badEnd =
    testing::AddGlobalTestEnvironment(new BadEnd); // GoogleTest owns it

} // namespace
