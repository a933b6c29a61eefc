#pragma once

#include <windows.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kestraboot::tests
{

/// A running imaging_host.exe (or a copy under another name), and what it tells.
class HostProcess
{
public:
    /// Starts it and waits until its service is started. `program` is looked for beside this executable.
    explicit HostProcess(const std::wstring& program);
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Ends it. Fails the test where it does not end by itself, or ends otherwise than it should.
    ~HostProcess();

    /// Waits for a line that is exactly this. False when it does not come.
    [[nodiscard]] bool WaitFor(const std::string& line) { return WaitForCount(line, 1); }
    [[nodiscard]] bool WaitForCount(const std::string& line, int count);

    /// All lines so far that begin so, in their order.
    [[nodiscard]] std::vector<std::string> Lines(const std::string& beginning = {}) const;

    /// Returns when all that the host has told before is here. False when it does not answer.
    [[nodiscard]] bool CatchUp();

    void Forget();

    /// Tells its still-image tracker that the tree of devices changed. False when the tracker's window
    /// does not come.
    [[nodiscard]] bool NotifyDeviceChange();

    /// The same; returns when the tracker has served it, and when what it told about it is here.
    [[nodiscard]] bool ServeDeviceChange();

    /// Whether it has the still-image tracker's window.
    [[nodiscard]] bool HasTrackerWindow();

    /// How long it may take to end; 30 seconds unless this is called.
    void GiveToEnd(DWORD milliseconds) noexcept { timeToEnd = milliseconds; }

    [[nodiscard]] DWORD Id() const noexcept { return process.dwProcessId; }
    [[nodiscard]] HANDLE Handle() const noexcept { return process.hProcess; }

private:
    void ReadLines();
    [[nodiscard]] bool AwaitTrackerWindow();
    void End();

    PROCESS_INFORMATION process = {};
    std::wstring pipe;
    HWND trackerWindow = nullptr;
    DWORD timeToEnd = 30'000; ///< milliseconds
    HANDLE input = nullptr;   ///< the host ends when this side closes it
    HANDLE output = nullptr;  ///< what the host tells
    mutable std::mutex mutex;
    std::condition_variable more;
    std::vector<std::string> lines;
    std::map<std::string, int> counts; ///< of the same lines
    int questions = 0;                 ///< asked since the lines were forgotten
    bool ended = false;
    std::thread reader;
};

/// The folder of this executable, ending in a backslash.
[[nodiscard]] std::wstring OwnFolder();

} // namespace kestraboot::tests
