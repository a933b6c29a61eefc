// The live trace viewer without a reader of its standard output.
#include "tests/support/temp_folder.h"
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::HasSubstr;

/// kestratrace.exe with a standard output that has no reader.
class TraceOutput : public testing::Test
{
protected:
    TraceOutput()
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        HANDLE readEnd = nullptr;
        EXPECT_TRUE(::CreatePipe(&readEnd, &brokenOutput, &inherited, 0));
        ::CloseHandle(readEnd);
        errors = ::CreateFileW(errorFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                               CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        EXPECT_NE(errors, INVALID_HANDLE_VALUE);
    }

    ~TraceOutput() override
    {
        ::TerminateProcess(viewer.hProcess, 0);
        for (const HANDLE handle : {brokenOutput, errors, viewer.hThread, viewer.hProcess}) {
            ::CloseHandle(handle);
        }
    }

    void Start(const std::wstring& arguments)
    {
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = brokenOutput;
        startup.hStdError = errors;
        std::wstring line = L"\"" + (BuiltPrograms() / "kestratrace.exe").wstring() + L"\" " + arguments;
        ASSERT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                     &startup, &viewer));
        ASSERT_TRUE(AwaitReader());
    }

    DWORD ExitCode()
    {
        EXPECT_EQ(::WaitForSingleObject(viewer.hProcess, 30'000), WAIT_OBJECT_0);
        DWORD code = 99;
        ::GetExitCodeProcess(viewer.hProcess, &code);
        return code;
    }

    TempFolder folder;
    const std::filesystem::path errorFile = folder.Path() / "errors.txt";
    HANDLE brokenOutput = nullptr;
    HANDLE errors = nullptr;
    PROCESS_INFORMATION viewer = {};
};

TEST_F(TraceOutput, ThatIsBrokenEndsAViewerWithoutAFile)
{
    Start(L"");
    ::OutputDebugStringW(L"<a line>");
    EXPECT_EQ(ExitCode(), 1U);
    EXPECT_EQ(Contents(errorFile), "kestratrace: standard output cannot be written any more\r\n");
}

TEST_F(TraceOutput, ThatIsBrokenIsReportedOnceIfAFileGoesOn)
{
    const std::filesystem::path file = folder.Path() / "trace.log";
    Start(L"--file \"" + file.wstring() + L"\" 2");
    ::OutputDebugStringW(L"<one>");
    ::OutputDebugStringW(L"<two>");
    EXPECT_EQ(ExitCode(), 1U);
    EXPECT_EQ(Contents(errorFile), "kestratrace: standard output cannot be written any more; the file "
                                   "goes on\r\n");
    EXPECT_THAT(Contents(file), HasSubstr("<two>"));
}

TEST_F(TraceOutput, ThatIsBrokenIsReportedAtTheEndToo)
{
    Start(L"--arrivals --json 2");
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>"); // stays open
    EXPECT_EQ(ExitCode(), 1U);
    EXPECT_EQ(Contents(errorFile), "kestratrace: standard output cannot be written any more\r\n");
}

} // namespace
} // namespace kestraboot::tests
