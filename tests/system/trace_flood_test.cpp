// The live trace viewer with more lines than it can show.
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"

#include <gmock/gmock.h>

#include <psapi.h>

#include <thread>

namespace kestraboot::tests
{
namespace
{

/// A viewer whose standard output is a pipe that nobody reads yet.
class UnreadViewer
{
public:
    UnreadViewer()
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        HANDLE writeEnd = nullptr;
        ::CreatePipe(&readEnd, &writeEnd, &inherited, 4096);
        ::SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = writeEnd;
        std::wstring line = L"\"" + (BuiltPrograms() / "kestratrace.exe").wstring() + L"\"";
        ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                         &process);
        ::CloseHandle(writeEnd);
        EXPECT_TRUE(AwaitReader());
    }
    UnreadViewer(const UnreadViewer&) = delete;
    UnreadViewer& operator=(const UnreadViewer&) = delete;
    ~UnreadViewer()
    {
        ::TerminateProcess(process.hProcess, 0);
        ::WaitForSingleObject(process.hProcess, 30'000);
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
        ::CloseHandle(readEnd);
    }

    /// Reads until a line contains that text.
    std::string ReadTo(const std::string& text)
    {
        std::string all;
        char some[4096];
        DWORD size = 0;
        while (all.find(text) == std::string::npos &&
               ::ReadFile(readEnd, some, sizeof some, &size, nullptr)) {
            all.append(some, size);
        }
        return all;
    }

    void StopReading() { ::CloseHandle(std::exchange(readEnd, nullptr)); }

    PROCESS_INFORMATION process = {};

private:
    HANDLE readEnd = nullptr;
};

constexpr const char* kLinesLost = " lines lost: ";

int CountOf(const std::string& text, const std::string& in)
{
    int count = 0;
    for (std::size_t at = in.find(text); at != std::string::npos; at = in.find(text, at + 1)) {
        ++count;
    }
    return count;
}

TEST(TraceFlood, LetsNoWriterWaitForASlowOutput)
{
    UnreadViewer viewer;
    const ULONGLONG before = ::GetTickCount64();
    constexpr int kLines = 300; // several times the capacity of the pipe
    for (int i = 0; i < kLines; ++i) {
        ::OutputDebugStringW(L"<a line that is waited for by nobody>");
    }
    // A writer whose turn does not come gives up after ten seconds.
    EXPECT_LT(::GetTickCount64() - before, 10'000U);
    std::thread last([] {
        ::OutputDebugStringW(L"<the last>");
    });
    EXPECT_EQ(CountOf("<a line that is waited for by nobody>", viewer.ReadTo("<the last>")), kLines);
    last.join();
}

int LostIn(const std::string& text)
{
    int lost = 0;
    for (std::size_t at = text.find(kLinesLost); at != std::string::npos;
         at = text.find(kLinesLost, at + 1)) {
        lost += std::stoi(text.substr(text.rfind('(', at) + 1));
    }
    return lost;
}

TEST(TraceFlood, ReportsHowManyLinesWereLost)
{
    UnreadViewer viewer;
    constexpr int kLines = 9'000; // more than the viewer stores, and as many in transit
    for (int i = 0; i < kLines; ++i) {
        ::OutputDebugStringW(L"<x>");
    }
    std::string seen = viewer.ReadTo(kLinesLost);
    EXPECT_GT(LostIn(seen), 0);
    // The stored lines were read before the loss is reported, so there is room again.
    ::OutputDebugStringW(L"<the last>");
    seen += viewer.ReadTo("<the last>");
    EXPECT_EQ(CountOf("<x>", seen) + LostIn(seen), kLines);
}

TEST(TraceFlood, EndsWhenNobodyCanReadItAnyMore)
{
    UnreadViewer viewer;
    viewer.StopReading();
    ::OutputDebugStringW(L"<x>");
    EXPECT_EQ(::WaitForSingleObject(viewer.process.hProcess, 30'000), WAIT_OBJECT_0);
    DWORD code = 0;
    ::GetExitCodeProcess(viewer.process.hProcess, &code);
    EXPECT_EQ(code, 1U);
}

std::size_t CommittedBytes(HANDLE process)
{
    PROCESS_MEMORY_COUNTERS memory = {};
    ::GetProcessMemoryInfo(process, &memory, sizeof memory);
    return memory.PagefileUsage;
}

TEST(TraceFlood, UsesBoundedMemory)
{
    RunningViewer viewer(L"--arrivals");
    const auto write = [&](int from, int count) {
        for (int i = from; i < from + count; ++i) {
            const std::wstring device =
                L"<***DeviceConnect***><WiaTracker><WIA DEVICE><C|" + std::to_wstring(i) + L">.";
            ::OutputDebugStringW(device.c_str());
        }
        const std::string last = "camera " + std::to_string(from + count - 33) + ' ';
        EXPECT_NE(viewer.Await(last), ""); // it still waits for the following ones
    };
    write(0, 1000);
    const std::size_t before = CommittedBytes(viewer.process.Handle());
    ASSERT_NE(before, 0U);
    write(1000, 4000);
    EXPECT_LT(CommittedBytes(viewer.process.Handle()), before + 512 * 1024);
}

} // namespace
} // namespace kestraboot::tests
