// The machine that the library sees in a sweep: an application whose proxy is the running program, a
// second application, the legacy organiser, other processes, and a clock that does not advance. It takes
// no memory while the product runs, so that there may be none.
#pragma once

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"

#include <windows.h>

#include <string>

namespace kestraboot::tests
{

/// Gates and steers the library while it lives. One at a time.
class Machine
{
public:
    Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    ~Machine();

    /// Restores the initial state of registry, folders and processes.
    void Restore();

    /// Writes each difference from the initial stored state into the journal.
    void ShowStored() const;

    [[nodiscard]] const std::wstring& Folder() const noexcept { return folder; }

    /// Uninstalls both applications; the organiser stays.
    void RemoveApplications() const;

    /// The file by which the maker of the machine stops the install if its line begins with 1.
    void PutOemFile(const char* line) const;

private:
    TempFolder files;
    std::wstring folder;
    RegistrySandbox registry;
    struct Patches;
    Patches* patches;
};

/// Closes the claim that TakeControl leaves open; reports in the journal whether there is one.
void CloseClaim();

/// The version of Windows that the library sees while this lives; Windows XP otherwise. Numbers as
/// Windows gives them; 6.0 is the workstation.
class WindowsVersion
{
public:
    WindowsVersion(DWORD major, DWORD minor) noexcept;
    WindowsVersion(const WindowsVersion&) = delete;
    WindowsVersion& operator=(const WindowsVersion&) = delete;
    ~WindowsVersion();
};

} // namespace kestraboot::tests
