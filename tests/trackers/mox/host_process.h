#pragma once

#include <windows.h>
#include <filesystem>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// mox_test_host.exe in a folder: the shipped library in a process of its own. Throws where the process
/// does not do what a test awaits; a process that hangs is ended by the watchdog of the tests.
class HostProcess
{
public:
    /// Starts it with `folder` as its current directory.
    explicit HostProcess(const std::filesystem::path& folder);
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Asks it to quit; it must end with 0.
    ~HostProcess();

    /// The next line that it says.
    [[nodiscard]] std::string Read();
    /// Reads on until that line comes.
    void Await(const std::string& line);
    /// Everything that it has said since it started and was read.
    [[nodiscard]] const std::vector<std::string>& Said() const { return said; }

    void Send(const std::string& command);
    /// Sends a command and reads on until a line that begins so.
    std::string Ask(const std::string& command, const std::string& answerBegins);
    [[nodiscard]] bool IsLoaded(const std::string& plugin);

private:
    HANDLE process = nullptr;
    HANDLE toProcess = nullptr;
    HANDLE fromProcess = nullptr;
    std::string unread;
    std::vector<std::string> said;
};

/// Runs a program beside the tests to its end; answers its exit code.
[[nodiscard]] unsigned RunProgram(const std::wstring& commandLine);

} // namespace kestraboot::tests
