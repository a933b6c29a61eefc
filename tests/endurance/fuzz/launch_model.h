// The rules of a launch, written a second time and as plainly as possible.
#pragma once

#include "tests/support/spawn_recorder.h"

#include <windows.h>

#include <string>
#include <vector>

namespace kestraboot::fuzz
{

/// Windows' answers about itself and about this process.
struct Machine {
    DWORD major = 6;
    DWORD minor = 1;
    BYTE product = VER_NT_WORKSTATION;
    DWORD platform = VER_PLATFORM_WIN32_NT;
    int failingForms = 0; ///< 1: the extended form of the version question fails; 2: the plain one too
    bool sessionKnown = true;
    bool inConsoleSession = true;
};

/// 1 Windows XP, 2 Windows 2000, 3 Windows Vista of a workstation, 0 anything else.
[[nodiscard]] int VersionClass(const Machine& machine);

/// The visible effects of a launch.
struct Launched {
    std::vector<tests::SpawnCall> starts;
    std::vector<std::wstring> trace;

    friend bool operator==(const Launched&, const Launched&) = default;
};

void PrintTo(const Launched& launched, std::ostream* out);

/// A compatible application is started for a device.
[[nodiscard]] Launched ModelOfLaunch(const Machine& machine, const std::wstring& path,
                                     const std::wstring& mode, const std::wstring& type,
                                     const std::wstring& id);

/// The legacy organiser's proxy is handed a device; `started` is the result of the start.
[[nodiscard]] Launched ModelOfOrganiserLaunch(const std::wstring& path, const std::wstring& type,
                                              const std::wstring& id, bool started);

} // namespace kestraboot::fuzz
