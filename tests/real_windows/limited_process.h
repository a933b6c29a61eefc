#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace kestraboot::real_windows
{

/// A process without a window of its own that writes into a file. It is terminated with this object at
/// the latest, together with all processes that it started.
class LimitedProcess
{
public:
    /// Starts it with `folder` as its current directory. Throws std::runtime_error if it cannot be
    /// started.
    LimitedProcess(const std::filesystem::path& program, const std::wstring& arguments,
                   const std::filesystem::path& folder, const std::filesystem::path& outputFile);
    LimitedProcess(const LimitedProcess&) = delete;
    LimitedProcess& operator=(const LimitedProcess&) = delete;
    ~LimitedProcess();

    /// Waits for the end; false if it still runs after that many milliseconds.
    [[nodiscard]] bool Ended(DWORD milliseconds) const;

    [[nodiscard]] DWORD ExitCode() const;

    /// The output since the last call.
    [[nodiscard]] std::string MoreOutput();

    /// Terminates it and the processes that it started.
    void End();

private:
    HANDLE job = nullptr;
    HANDLE process = nullptr;
    HANDLE output = INVALID_HANDLE_VALUE;
};

} // namespace kestraboot::real_windows
