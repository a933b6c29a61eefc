#pragma once

#include "tests/support/program_folder.h"

#include <windows.h>

#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kestraboot::tests
{

/// A program that hosts the shipped library in a process of its own. It takes commands and writes lines
/// through a HostChannel. A host that hangs, ends by itself or ends badly fails the test.
class HostProcess
{
public:
    /// `program` is in the folder of this executable; `folder` becomes its current directory.
    explicit HostProcess(const std::filesystem::path& program,
                         const std::filesystem::path& folder = ProgramFolder());
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Ends the host by the end of its commands.
    ~HostProcess();

    /// Throws if the host takes no commands.
    void Send(const std::string& command);

    /// Waits for exactly this line, or for that many of it. Returns false if it does not come.
    [[nodiscard]] bool WaitFor(const std::string& line) { return WaitForCount(line, 1); }
    [[nodiscard]] bool WaitForCount(const std::string& line, int count);

    /// The next line that Read and ReadUntil have not read yet. Throws if the host writes none.
    [[nodiscard]] std::string Read();
    /// Reads until a line begins so, and returns that line.
    std::string ReadUntil(const std::string& beginning);

    /// All lines so far with that prefix, in their order.
    [[nodiscard]] std::vector<std::string> Lines(const std::string& beginning = {}) const;

    void Forget();

    /// The time limit for its exit; 30 seconds unless this is called.
    void GiveToEnd(DWORD milliseconds) noexcept { timeToEnd = milliseconds; }

    [[nodiscard]] DWORD Id() const noexcept { return process.dwProcessId; }
    [[nodiscard]] HANDLE Handle() const noexcept { return process.hProcess; }

private:
    void ReceiveLines();

    PROCESS_INFORMATION process = {};
    std::wstring pipe;
    DWORD timeToEnd = 30'000; ///< milliseconds
    HANDLE input = nullptr;   ///< the host exits when this side closes it
    HANDLE output = nullptr;  ///< the host's output
    mutable std::mutex mutex;
    std::condition_variable more;
    std::vector<std::string> lines;
    std::size_t read = 0;              ///< number of the lines that Read has returned
    std::map<std::string, int> counts; ///< of the same lines
    bool ended = false;
    std::thread receiver;
};

} // namespace kestraboot::tests
