#pragma once

#include <windows.h>
#include <cstdint>
#include <string>

namespace kestraboot
{

struct ProcessInfo {
    std::uint32_t processId = 0;
    HANDLE handle = nullptr;     ///< the handle of the query; closed already, never to be used
    std::wstring executablePath; ///< full path as the system reports it, at most 259 characters
};

/// Fills `info` with the identity of the running process. A process that cannot open itself leaves
/// `info` unchanged; one whose modules cannot be listed gets an empty path.
void GetCurrentProcessInfo(ProcessInfo& info);

/// The path of the main executable of an open process, at most 259 characters. False if its modules
/// cannot be listed; a name that cannot be read is an empty path.
[[nodiscard]] bool ReadExecutablePath(HANDLE process, std::wstring& path);

} // namespace kestraboot
