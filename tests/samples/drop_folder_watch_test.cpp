// The times at which the drop folder plugin reports its folder, and its leftovers.
#include "tests/samples/loaded_plugin.h"
#include "tests/support/handle_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <thread>

namespace kestraboot::tests
{
namespace
{

namespace fs = std::filesystem;

class DropFolderWatch : public testing::Test
{
protected:
    DropFolderWatch()
    {
        const std::wstring key = L"SOFTWARE\\Corvane\\Drop Folder";
        PutText(HKEY_CURRENT_USER, key, L"Folder", path);
        PutDword(HKEY_CURRENT_USER, key, L"SettleMilliseconds", 100);
        PutDword(HKEY_CURRENT_USER, key, L"RetryMilliseconds", 100);
    }

    void Register() { ASSERT_EQ(plugin->source->RegisterCallback(&reports), mox::kSuccess); }

    void Start()
    {
        Register();
        AwaitLine(path + L": being watched.");
    }

    void End()
    {
        EXPECT_EQ(plugin->source->UnregisterCallback(&reports), mox::kSuccess);
        EXPECT_EQ(reports.references, 1U) << "the callback's reference was not given back";
        trace.reset();
        plugin.reset();
        EXPECT_EQ(::GetModuleHandleW(L"drop_folder.mox"), nullptr);
    }

    /// `times`: for lines that report one thing more than once.
    void AwaitLine(const std::wstring& text, int times = 1)
    {
        ASSERT_TRUE(trace->Await(L"<DropFolder><" + text + L">", times))
            << testing::PrintToString(trace->Lines());
    }

    void AwaitReported(int pictures, int times = 1)
    {
        AwaitLine(path + L": reported, with this number of new pictures: " + std::to_wstring(pictures),
                  times);
    }

    RegistrySandbox registry;
    TempFolder above;
    const fs::path drop = above.AddFolder(L"Server/Drop");
    const std::wstring path = (above.Path() / L"Server" / L"Drop").make_preferred().wstring();
    KeptReports reports;
    std::optional<LoadedPlugin> plugin{std::in_place, L"drop_folder.mox"};
    std::optional<TraceRecorder> trace{std::in_place};
};

TEST_F(DropFolderWatch, ReportsTheFolderAsAnArchive)
{
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    ASSERT_TRUE(reports.Await(1));
    const mox::DeviceRecord record = reports.Records()[0];
    EXPECT_EQ(record.eventCode, mox::kDeviceArrived);
    EXPECT_EQ(record.size, mox::kDeviceRecordSize);
    EXPECT_EQ(record.deviceKind, mox::kKindArchive);
    EXPECT_EQ(std::wstring(record.deviceId), path);
    End();
}

TEST_F(DropFolderWatch, ReportsPicturesThatComeInAFolderWithThem)
{
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1); // from here on it scans only when it is notified of a change
    above.AddFile(L"Card/DCIM/one.JPG", "picture");
    above.AddFile(L"Card/DCIM/two.Tiff", "picture");
    fs::rename(above.Path() / L"Card", drop / L"Card");
    AwaitReported(2);
    End();
    EXPECT_EQ(reports.Records().size(), 2U);
}

TEST_F(DropFolderWatch, ReportsNothingButNewPictures)
{
    above.AddFile(L"Server/Drop/old.jpg", "was there at the beginning");
    Start();
    above.AddFile(L"Server/Drop/notes.txt", "no picture");
    above.AddFile(L"Server/Drop/jpg", "no picture");
    above.AddFile(L"Server/Drop/empty.png");
    above.AddFile(L"Server/Drop/old.jpg", "edited by the application that was started");
    above.AddFile(L"Server/Drop/new.jpg", "picture");
    AwaitReported(1);
    End();
    EXPECT_EQ(reports.Records().size(), 1U);
}

TEST_F(DropFolderWatch, ReportsAPictureThatWasRemovedAndComesAgain)
{
    Start();
    const fs::path one = above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1);
    fs::remove(one);
    // A picture is new only after a scan without it: the second report proves that scan.
    above.AddFile(L"Server/Drop/two.jpg", "picture");
    AwaitReported(1, 2);
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1, 3);
    End();
}

TEST_F(DropFolderWatch, WaitsForAPictureThatIsStillBeingWritten)
{
    Start();
    const std::wstring slow = path + L"\\slow.jpg";
    const HANDLE file = ::CreateFileW(slow.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(::WriteFile(file, "half", 4, &written, nullptr));
    above.AddFile(L"Server/Drop/done.jpg", "picture");
    AwaitLine(slow + L": still being written. The report waits for it.");
    EXPECT_TRUE(reports.Records().empty());
    EXPECT_TRUE(::WriteFile(file, "half", 4, &written, nullptr));
    ::CloseHandle(file);
    AwaitReported(2);
    End();
    EXPECT_EQ(reports.Records().size(), 1U);
}

TEST_F(DropFolderWatch, TriesAReportAgainThatTheHostCouldNotTake)
{
    reports.refusals = 2;
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitLine(path + L": the host took no report. It is tried again.", 2);
    AwaitReported(1);
    End();
    EXPECT_EQ(reports.Records().size(), 1U);
}

TEST_F(DropFolderWatch, ReadsTheWholeFolderWhereWindowsLostCount)
{
    FAKE_IMPORT(GetOverlappedResult)
    result([&](HANDLE file, LPOVERLAPPED request, LPDWORD bytes, BOOL wait) {
        const BOOL told = result.CallOriginal(file, request, bytes, wait);
        *bytes = 0; // Windows' sign for it
        return told;
    });
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1); // from here on it scans only when it is notified of a change
    above.AddFile(L"Server/Drop/two.jpg", "picture");
    AwaitReported(1, 2);
    AwaitLine(path + L": too many changes at once. The whole folder is read.", 2);
    EXPECT_EQ(plugin->source->UnregisterCallback(&reports), mox::kSuccess);
}

TEST_F(DropFolderWatch, TakesAllForNewInAFolderThatIsMadeLater)
{
    fs::remove(drop);
    Register();
    AwaitLine(path + L": not there. It is watched once it comes.");
    above.AddFile(L"Made/one.jpg", "picture");
    fs::rename(above.Path() / L"Made", drop);
    AwaitReported(1);
    End();
}

TEST_F(DropFolderWatch, TakesAllForNewInAFolderThatWasRemovedAndIsMadeAgain)
{
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1);
    // Under Wine a folder that a program has open exists until it is closed, so it is moved away first.
    fs::rename(drop, above.Path() / L"Removed");
    AwaitLine(path + L": gone.");
    AwaitLine(path + L": not there. It is watched once it comes.");
    fs::remove_all(above.Path() / L"Removed");
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1, 2);
    End();
}

TEST_F(DropFolderWatch, KnowsThePicturesAgainOfAServerThatWasAway)
{
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1);
    fs::rename(above.Path() / L"Server", above.Path() / L"Away");
    AwaitLine(path + L": gone.");
    AwaitLine(path + L": not there. It is watched once it comes.");
    above.AddFile(L"Away/Drop/two.jpg", "picture");
    fs::rename(above.Path() / L"Away", above.Path() / L"Server");
    AwaitLine(path + L": being watched.", 2);
    AwaitReported(1, 2);
    End();
    EXPECT_EQ(reports.Records().size(), 2U);
}

TEST_F(DropFolderWatch, TakesNothingForNewOnAServerThatComesLater)
{
    above.AddFile(L"Server/Drop/old.jpg", "picture");
    fs::rename(above.Path() / L"Server", above.Path() / L"Away");
    Register();
    AwaitLine(path + L": not there. It is watched once it comes.");
    fs::rename(above.Path() / L"Away", above.Path() / L"Server");
    AwaitLine(path + L": being watched.");
    above.AddFile(L"Server/Drop/new.jpg", "picture");
    AwaitReported(1);
    End();
    EXPECT_EQ(reports.Records().size(), 1U);
}

TEST_F(DropFolderWatch, BeginsNoReportAfterItsEnd)
{
    Signal mayReturn;
    reports.mayReturn = &mayReturn;
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    reports.called.Wait();
    above.AddFile(L"Server/Drop/two.jpg", "picture");
    Signal begun;
    std::thread ending([&] {
        begun.Set();
        EXPECT_EQ(plugin->source->UnregisterCallback(&reports), mox::kSuccess);
        EXPECT_EQ(reports.Records().size(), 1U) << "it did not wait for the report that had begun";
    });
    begun.Wait();
    mayReturn.Set();
    ending.join();
    EXPECT_EQ(reports.references, 1U);
}

TEST_F(DropFolderWatch, LetsWindowsOpenNoBox)
{
    // Not declared for Windows Vista, which lacks it.
    const auto modeOfThisThread = reinterpret_cast<DWORD(WINAPI*)()>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetThreadErrorMode")));
    ASSERT_NE(modeOfThisThread, nullptr);
    const DWORD before = modeOfThisThread();
    std::atomic<int> withBoxes = 0;
    const auto look = [&] {
        withBoxes += (modeOfThisThread() & SEM_FAILCRITICALERRORS) == 0 ? 1 : 0;
    };
    FAKE_IMPORT(GetFileAttributesW)
    attributes([&](const wchar_t* name) {
        look();
        return attributes.CallOriginal(name);
    });
    FAKE_IMPORT(CreateFileW)
    open([&](const wchar_t* name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
             DWORD flags, HANDLE like) {
        look();
        return open.CallOriginal(name, access, share, security, how, flags, like);
    });
    Start();
    above.AddFile(L"Server/Drop/one.jpg", "picture");
    AwaitReported(1);
    EXPECT_EQ(plugin->source->UnregisterCallback(&reports), mox::kSuccess);
    EXPECT_EQ(withBoxes, 0);
    EXPECT_GT(attributes.Calls(), 0);
    EXPECT_GT(open.Calls(), 0);
    EXPECT_EQ(modeOfThisThread(), before) << "the host's thread keeps the plugin's mode";
}

TEST_F(DropFolderWatch, LeavesNoThreadAndNoHandle)
{
    std::vector<HANDLE> threads;
    FAKE_IMPORT(CreateThread)
    create([&](LPSECURITY_ATTRIBUTES attributes, SIZE_T stack, LPTHREAD_START_ROUTINE start,
               LPVOID parameter, DWORD flags, LPDWORD id) {
        const HANDLE thread = create.CallOriginal(attributes, stack, start, parameter, flags, id);
        HANDLE kept = nullptr;
        ::DuplicateHandle(::GetCurrentProcess(), thread, ::GetCurrentProcess(), &kept, SYNCHRONIZE,
                          FALSE, 0);
        threads.push_back(kept);
        return thread;
    });
    int rounds = 0;
    const auto opensInOneRound = [&] {
        const int before = OpenHandlesOf(::GetCurrentProcess());
        Register();
        AwaitLine(path + L": being watched.", ++rounds);
        EXPECT_EQ(plugin->source->UnregisterCallback(&reports), mox::kSuccess);
        return OpenHandlesOf(::GetCurrentProcess()) - before;
    };
    static_cast<void>(opensInOneRound()); // Windows opens some once in a process
    int opened = 0;
    // Only a leak of every round counts, because Wine opens a handle of its own now and then.
    for (int round = 0; round < 4 && opened != 1; ++round) {
        opened = opensInOneRound();
    }
    EXPECT_EQ(opened, 1) << "more is open than this test's own handle of the thread";
    EXPECT_EQ(threads.size(), static_cast<std::size_t>(rounds));
    for (const HANDLE thread : threads) {
        EXPECT_EQ(::WaitForSingleObject(thread, 0), WAIT_OBJECT_0) << "a thread is still running";
        ::CloseHandle(thread);
    }
}

} // namespace
} // namespace kestraboot::tests
