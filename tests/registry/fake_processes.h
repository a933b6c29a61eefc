#pragma once

#include "tests/support/fake_modules.h"
#include "tests/support/import_patch.h"

#include <windows.h>
#include <tlhelp32.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// Stands for the processes of the machine, including this one, in all the queries that the product
/// sends to Windows.
class FakeProcesses
{
public:
    struct Process {
        DWORD id;
        std::wstring path;
        bool opens = true;
        bool hasModules = true;
    };

    explicit FakeProcesses(std::vector<Process> others,
                           std::wstring ownPath = L"C:\\Own\\kestraboot.exe");

    /// Whether a snapshot can be taken.
    bool snapshotWorks = true;

    /// The events, in order: "ask windows", "wait 2000", "end 7 with 0".
    std::vector<std::wstring> events;

    /// Processes whose handle was opened once and not closed.
    [[nodiscard]] std::set<DWORD> LeftOpen() const;
    [[nodiscard]] bool SnapshotClosed() const noexcept { return snapshotClosed; }

private:
    HANDLE Open(DWORD access, BOOL inherit, DWORD id);
    BOOL Next(HANDLE snapshot, PROCESSENTRY32W* entry);
    const Process* Find(HANDLE handle) const;

    std::vector<Process> processes;
    std::size_t next = 0;
    bool snapshotClosed = false;
    std::map<DWORD, int> openHandles;

    FAKE_IMPORT(CreateToolhelp32Snapshot) snapshot;
    FAKE_IMPORT(Process32FirstW) first;
    FAKE_IMPORT(Process32NextW) following;
    FAKE_IMPORT(OpenProcess) open;
    FakeModuleList modules;
    FakeModuleName name;
    FAKE_IMPORT(CloseHandle) close;
    FAKE_IMPORT(EnumWindows) windows;
    FAKE_IMPORT(Sleep) sleep;
    FAKE_IMPORT(TerminateProcess) terminate;
};

} // namespace kestraboot::tests
