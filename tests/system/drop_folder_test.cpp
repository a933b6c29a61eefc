// A picture that is dropped into a folder starts an application, through the plugin.
#include "tests/system/drop_folder.h"
#include "tests/system/plugin_test.h"

#include <tlhelp32.h>

#include <fstream>

namespace kestraboot::tests
{
namespace
{

namespace fs = std::filesystem;

/// During its lifetime suspends all threads of a process.
class HeldProcess
{
public:
    explicit HeldProcess(DWORD processId)
    {
        const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
        THREADENTRY32 entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL found = ::Thread32First(snapshot, &entry); found;
             found = ::Thread32Next(snapshot, &entry)) {
            if (entry.th32OwnerProcessID == processId) {
                Suspend(entry.th32ThreadID);
            }
        }
        ::CloseHandle(snapshot);
    }
    HeldProcess(const HeldProcess&) = delete;
    HeldProcess& operator=(const HeldProcess&) = delete;
    ~HeldProcess()
    {
        for (const HANDLE thread : threads) {
            ::ResumeThread(thread);
            ::CloseHandle(thread);
        }
    }

private:
    /// The thread may have ended since the snapshot.
    void Suspend(DWORD threadId)
    {
        const HANDLE thread = ::OpenThread(THREAD_SUSPEND_RESUME | SYNCHRONIZE, FALSE, threadId);
        if (thread == nullptr) {
            EXPECT_EQ(::GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
            return;
        }
        threads.push_back(thread);
        EXPECT_TRUE(::SuspendThread(thread) != MAXDWORD ||
                    ::WaitForSingleObject(thread, 0) == WAIT_OBJECT_0)
            << "a thread runs on";
    }

    std::vector<HANDLE> threads;
};

class DropFolderSystem : public PluginTest
{
protected:
    void StartWatching()
    {
        StartWith(L"drop_folder.mox", "Drop folder");
        ASSERT_TRUE(trace.Await(drop.Watched()));
    }

    /// The command line of the application that is started for the folder.
    std::string Started() const
    {
        return "\"" + app.Application().string() +
               "\" module=kestrafetch params mode=direct devType=archive " + "priDevId=\"" +
               drop.folder.Path().string() + "\"";
    }

    /// Drops that many pictures at once, in folders, because a large folder is slow under Wine.
    void Throw(int pictures, std::size_t nameLength) const
    {
        for (int i = 0; i < pictures; ++i) {
            std::wstring name = std::to_wstring(i);
            name.insert(0, nameLength - name.size(), L'p');
            drop.folder.AddFile(fs::path(std::to_wstring(i / 50)) / (name + L".jpg"), "picture");
        }
    }

    DropFolder drop;
};

TEST_F(DropFolderSystem, APictureStartsTheApplication)
{
    StartWatching();
    drop.folder.AddFile(L"one.jpg", "picture");
    ASSERT_TRUE(trace.Await(Started()));
    const std::string report = "command line: " + Started() + "\nmode: direct\ndevice: archive " +
                               drop.folder.Path().string() + "\n";
    EXPECT_TRUE(Within(20'000, [&] {
        return app.Report() == report;
    })) << app.Report();
    Quit(*boot);
}

TEST_F(DropFolderSystem, AThousandPicturesAreOneReport)
{
    StartWatching();
    Throw(1'000, 8);
    ASSERT_TRUE(trace.Await(drop.Reported(1'000)));
    drop.folder.AddFile(L"one more.jpg", "picture");
    ASSERT_TRUE(trace.Await(drop.Reported(1)));
    EXPECT_EQ(trace.Count(Started()), 2);
    Quit(*boot);
}

TEST_F(DropFolderSystem, NoPictureIsLostIfTheBufferOfChangesOverflows)
{
    StartWatching();
    {
        const HeldProcess held(boot->Id());
        Throw(200, 150); // at least two changes of 300 bytes each, and the buffer holds 64 KB
    }
    ASSERT_TRUE(trace.Await(drop.Line(": too many changes at once. The whole folder is read.")));
    ASSERT_TRUE(trace.Await(drop.Reported(200)));
    EXPECT_EQ(trace.Count(Started()), 1);
    Quit(*boot);
}

TEST_F(DropFolderSystem, APictureIsReportedOnceItIsClosed)
{
    StartWatching();
    std::ofstream slow(drop.folder.Path() / L"slow.jpg");
    slow << "half" << std::flush;
    ASSERT_TRUE(trace.Await("<DropFolder><" + drop.folder.Path().string() +
                            "\\slow.jpg: still being written. The report waits for it.>"));
    EXPECT_EQ(trace.Count(Started()), 0);
    slow.close();
    ASSERT_TRUE(trace.Await(drop.Reported(1)));
    EXPECT_EQ(trace.Count(Started()), 1);
    Quit(*boot);
}

TEST_F(DropFolderSystem, AFolderThatIsRemovedAndCreatedAgainIsWatchedAgain)
{
    StartWatching();
    const fs::path away = drop.path + L".away";
    fs::rename(drop.path, away);
    ASSERT_TRUE(trace.Await(drop.Line(": gone.")));
    ASSERT_TRUE(trace.Await(drop.Line(": not there. It is watched once it comes.")));
    std::ofstream(away / L"one.jpg") << "picture";
    fs::rename(away, drop.path);
    ASSERT_TRUE(trace.Await(drop.Reported(1)));
    EXPECT_EQ(trace.Count(Started()), 1);
    Quit(*boot);
}

TEST_F(DropFolderSystem, WithoutAFolderInTheRegistryNothingIsWatched)
{
    RemoveKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\Drop Folder");
    Install(L"drop_folder.mox", kPhoneManager);
    Start();
    EXPECT_TRUE(trace.Await("<DropFolder><Folder: the value cannot be read. No folder is watched.>"));
    EXPECT_EQ(trace.Count(Detecting("Drop folder")), 0);
    Quit(*boot);
}

} // namespace
} // namespace kestraboot::tests
