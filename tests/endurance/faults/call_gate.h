// Every call that a module makes through its import table is checked before it goes on.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace kestraboot::tests
{

struct FunctionFailures;

/// A call that is about to be made.
struct GatedCall {
    const char* function;
    const FunctionFailures* failures; ///< null if the table does not know the function
    void* original;
    std::uint64_t* first;   ///< the first four integer arguments
    std::uint64_t* further; ///< the fifth one and those after it
    std::uint64_t result;   ///< the caller's result if the call does not go on

    [[nodiscard]] std::uint64_t Argument(std::size_t index) const noexcept
    {
        return index < 4 ? first[index] : further[index - 4];
    }
};

/// Points each function's import slot of a module at a few instructions of its own, which ask first.
/// The current content of a slot (the function itself, or a test's fake of it) becomes the original.
/// Functions of the C++ runtime's own libraries and of kestraboot.dll are left alone. One at a time.
class CallGate
{
public:
    struct Slot {
        const char* function;
        void** address;
        void* original;
        const FunctionFailures* failures;
        const FunctionFailures*
            withoutBuffer; ///< null: a call whose second argument is null is like the others
    };

    /// Returns whether the call goes on. Runs on the calling thread, in the middle of the product, so it
    /// must not throw and must not make calls of the gated module.
    using Decide = bool (*)(GatedCall& call) noexcept;

    CallGate(HMODULE module, Decide decide);
    CallGate(const CallGate&) = delete;
    CallGate& operator=(const CallGate&) = delete;
    ~CallGate();

    [[nodiscard]] const std::vector<Slot>& Slots() const noexcept { return slots; }

private:
    void StoreAll(bool gated) const;

    std::vector<Slot> slots;
    std::uint8_t* code;
};

} // namespace kestraboot::tests
