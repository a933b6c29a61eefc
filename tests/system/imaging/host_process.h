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
    ~HostProcess(); ///< ends it

    /// Waits for a line that is exactly this. False when it does not come.
    [[nodiscard]] bool WaitFor(const std::string& line) { return WaitForCount(line, 1); }
    [[nodiscard]] bool WaitForCount(const std::string& line, int count);

    /// All lines so far that begin so, in their order.
    [[nodiscard]] std::vector<std::string> Lines(const std::string& beginning = {}) const;

    void Forget();

    /// Tells its still-image tracker that the tree of devices changed. False when the tracker has no
    /// window.
    bool NotifyDeviceChange();

    [[nodiscard]] DWORD Id() const noexcept { return process.dwProcessId; }
    [[nodiscard]] HANDLE Handle() const noexcept { return process.hProcess; }

private:
    void ReadLines();
    void End();

    PROCESS_INFORMATION process = {};
    std::wstring pipe;
    HWND trackerWindow = nullptr;
    HANDLE input = nullptr;  ///< the host ends when this side closes it
    HANDLE output = nullptr; ///< what the host tells
    mutable std::mutex mutex;
    std::condition_variable more;
    std::vector<std::string> lines;
    std::map<std::string, int> counts; ///< of the same lines
    bool ended = false;
    std::thread reader;
};

/// The folder of this executable, ending in a backslash.
[[nodiscard]] std::wstring OwnFolder();

} // namespace kestraboot::tests
