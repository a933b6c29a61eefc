#pragma once

#include <windows.h>
#include <filesystem>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// mox_test_host.exe in a folder: the shipped library in a process of its own. The functions throw if
/// the process does not do what a test awaits. If the process hangs, the watchdog of the tests
/// terminates it.
class HostProcess
{
public:
    /// Starts the process with `folder` as its current directory.
    explicit HostProcess(const std::filesystem::path& folder);
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Sends "quit". The process must exit with 0.
    ~HostProcess();

    /// The next line of its output.
    [[nodiscard]] std::string Read();
    /// Reads until that line arrives.
    void Await(const std::string& line);
    /// All lines read since the start.
    [[nodiscard]] const std::vector<std::string>& Said() const { return said; }

    void Send(const std::string& command);
    /// Sends a command and reads until a line begins with `answerBegins`.
    std::string Ask(const std::string& command, const std::string& answerBegins);
    [[nodiscard]] bool IsLoaded(const std::string& plugin);

private:
    HANDLE process = nullptr;
    HANDLE toProcess = nullptr;
    HANDLE fromProcess = nullptr;
    std::string unread;
    std::vector<std::string> said;
};

/// Runs a program that is in the folder of the tests until it exits. Returns its exit code.
[[nodiscard]] unsigned RunProgram(const std::wstring& commandLine);

} // namespace kestraboot::tests
