#pragma once

#include <windows.h>

#include <mutex>
#include <string>

namespace kestraboot::tests
{

/// The host's side of a HostProcess, which gives the host the pipes' name as its argument.
class HostChannel
{
public:
    explicit HostChannel(const std::wstring& pipe);
    HostChannel(const HostChannel&) = delete;
    HostChannel& operator=(const HostChannel&) = delete;
    ~HostChannel() = default; // the host's exit closes the pipes, after the threads that may still write

    [[nodiscard]] bool IsOpen() const noexcept;

    /// The next command. Returns false at the end of the commands, when the host must exit.
    [[nodiscard]] bool Next(std::string& command);

    /// Writes a line. Any thread.
    void Say(const std::string& line);
    /// Writes a word, a blank and the text in UTF-8.
    void Say(const char* word, const std::wstring& text);

private:
    HANDLE output;
    HANDLE input;
    std::mutex mutex;
    std::string unread;
};

} // namespace kestraboot::tests
