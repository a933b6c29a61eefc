// The machine that kestractl sees in a sweep: a registry and files of its own, and fixed answers of
// Windows about the account, the processes and the folders.
#pragma once

#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"

#include <memory>
#include <string>

namespace kestraboot::tests
{

/// Steers the module under test while it lives. One at a time.
class CtlWorld
{
public:
    CtlWorld();
    CtlWorld(const CtlWorld&) = delete;
    CtlWorld& operator=(const CtlWorld&) = delete;
    ~CtlWorld();

    /// One application with its auto-run entry and a locale, which the user made the default.
    void InstallAnApplication();

    /// The files beside its boot program, which is in control and has a window, and those of Windows.
    void PutFiles();

    /// Each restored world has the copy of a process that was terminated.
    void LeaveACopyBehind() { hasLeftCopy = true; }

    /// Removes the leftovers of a run.
    void Restore() const;

    /// Writes each copy of the keys that is left, and each root that is still replaced, into the
    /// journal.
    void ShowLeftovers() const;

    [[nodiscard]] const std::wstring& Folder() const noexcept { return folder; }

private:
    TempFolder files;
    std::wstring folder;
    RegistrySandbox registry;
    bool hasLeftCopy = false;
    struct Patches;
    std::unique_ptr<Patches> patches;
};

} // namespace kestraboot::tests
