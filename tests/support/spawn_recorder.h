#pragma once

#include "tests/support/import_patch.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// One call of _wspawnlp.
struct SpawnCall {
    int mode = 0;      ///< _P_NOWAIT, _P_DETACH
    std::wstring file; ///< the program to start, as it was passed
    std::vector<std::wstring> arguments;

    friend bool operator==(const SpawnCall&, const SpawnCall&) = default;
};

/// During its lifetime records the programs that the module under test would start, and starts none. One
/// at a time.
class SpawnRecorder
{
public:
    SpawnRecorder();
    SpawnRecorder(const SpawnRecorder&) = delete;
    SpawnRecorder& operator=(const SpawnRecorder&) = delete;
    ~SpawnRecorder();

    /// The result of every start: -1 for a failed one (the default is 0, as of a detached one), or a
    /// handle, which the module under test must close.
    void Answer(std::intptr_t result) noexcept { answer = result; }

    /// Called at every start as well, for tests of an order.
    void OnSpawn(std::function<void(const SpawnCall&)> hook) { onSpawn = std::move(hook); }

    [[nodiscard]] const std::vector<SpawnCall>& Calls() const noexcept { return calls; }

    void Clear() noexcept { calls.clear(); }

private:
    static std::intptr_t Record(int mode, const wchar_t* file, const wchar_t* first, ...);

    static inline SpawnRecorder* current = nullptr;
    std::intptr_t answer = 0;
    std::function<void(const SpawnCall&)> onSpawn;
    std::vector<SpawnCall> calls;
    ImportPatch patch;
};

/// For messages of failed tests.
void PrintTo(const SpawnCall& call, std::ostream* out);

} // namespace kestraboot::tests
