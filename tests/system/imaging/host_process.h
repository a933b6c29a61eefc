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

/// A running imaging_host.exe (or a copy under another name), and its output.
class HostProcess
{
public:
    /// Starts it and waits until its service has started. `program` is in the folder of this executable.
    explicit HostProcess(const std::wstring& program);
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Ends it. Fails the test if it does not exit by itself, or exits with an error.
    ~HostProcess();

    /// Waits for exactly this line. Returns false if it does not come.
    [[nodiscard]] bool WaitFor(const std::string& line) { return WaitForCount(line, 1); }
    [[nodiscard]] bool WaitForCount(const std::string& line, int count);

    /// All lines so far with that prefix, in their order.
    [[nodiscard]] std::vector<std::string> Lines(const std::string& beginning = {}) const;

    /// Returns when all earlier output of the host is here. Returns false if the host does not answer.
    [[nodiscard]] bool CatchUp();

    void Forget();

    /// Notifies its still-image tracker that the device tree changed. Returns false if the tracker's
    /// window does not appear.
    [[nodiscard]] bool NotifyDeviceChange();

    /// The same; returns when the tracker has handled it and the tracker's output about it is here.
    [[nodiscard]] bool ServeDeviceChange();

    /// Whether it has the still-image tracker's window.
    [[nodiscard]] bool HasTrackerWindow();

    /// The time limit for its exit; 30 seconds unless this is called.
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
    HANDLE input = nullptr;   ///< the host exits when this side closes it
    HANDLE output = nullptr;  ///< the host's output
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
