#pragma once

#include "kestraboot/command_handler.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <process.h>

namespace kestraboot
{

using Lines = std::vector<std::wstring>;
using Calls = std::vector<tests::SpawnCall>;

/// Records the starts for a device, without starting a process.
struct Launch : testing::Test {
    void Kestra(std::wstring appPath, std::wstring mode, std::wstring type, std::wstring id)
    {
        handler.LaunchKestra(appPath, mode, type, id);
    }

    /// The start of `path` for a volume, in that mode.
    static tests::SpawnCall Started(const std::wstring& path, const std::wstring& mode)
    {
        return {_P_NOWAIT,
                path,
                {L'"' + path + L'"', L"module=kestrafetch", L"params", L"mode=" + mode,
                 L"devType=volume", L"priDevId=\"E:\""}};
    }

    tests::RegistrySandbox sandbox;
    tests::TempFolder folder;
    tests::SpawnRecorder spawns;
    tests::TraceRecorder trace;
    CKestraBootCommandHandler handler;
    std::wstring volume = L"volume";
    std::wstring drive = L"E:";
};

} // namespace kestraboot
