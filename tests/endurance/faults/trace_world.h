// The session that kestratrace sees in a sweep: a writer of two debug lines, somebody who then presses
// Ctrl+C, clocks that stand still, and files.
#pragma once

#include "tests/support/temp_folder.h"

#include <memory>
#include <string>

namespace kestraboot::tests
{

/// Steers the module under test while it lives. One at a time.
class TraceWorld
{
public:
    TraceWorld();
    TraceWorld(const TraceWorld&) = delete;
    TraceWorld& operator=(const TraceWorld&) = delete;
    ~TraceWorld();

    /// Restores the files, and the writer's lines.
    void Restore() const;

    /// Ends what the process itself would end.
    void EndProcess() const;

    /// Writes the recorded file and the earlier one into the journal.
    void ShowRecorded() const;

    [[nodiscard]] const std::wstring& Folder() const noexcept { return folder; }
    [[nodiscard]] std::wstring Recorded() const { return folder + L"\\trace.log"; }
    [[nodiscard]] std::wstring Recording() const { return folder + L"\\recording.log"; }

private:
    TempFolder files;
    std::wstring folder;
    struct Patches;
    std::unique_ptr<Patches> patches;
};

} // namespace kestraboot::tests
