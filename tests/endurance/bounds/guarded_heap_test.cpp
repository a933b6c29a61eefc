// The guarded heap itself, in child processes that it terminates.
#include "tests/support/run_in_child.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestraboot::tests
{
namespace
{

constexpr unsigned long kAccessViolation = 0xC0000005;
constexpr unsigned long kReported = 97;

unsigned long EndOfChild(const wchar_t* side, const std::function<void()>& operation)
{
    wchar_t before[16] = {};
    const bool guarded = ::GetEnvironmentVariableW(L"KESTRABOOT_GUARD", before, 16) != 0;
    ::SetEnvironmentVariableW(L"KESTRABOOT_GUARD", side);
    const ChildEnd end = RunInChild(operation);
    ::SetEnvironmentVariableW(L"KESTRABOOT_GUARD", guarded ? before : nullptr);
    return end.exitCode;
}

/// Hides the planted fault from the compiler.
template <typename Value>
Value Unseen(Value value)
{
    volatile Value hidden = value;
    return hidden;
}

void KeepToTheBlocks()
{
    for (std::size_t size = 0; size < 20'000; size = size * 2 + 1) {
        std::vector<char> block(size, 'x');
        std::wstring text(size, L'x');
        text += L"and on";
        block.push_back('y');
        if (text.size() != size + 6) {
            ::TerminateProcess(::GetCurrentProcess(), 1);
        }
    }
    auto* grown = static_cast<char*>(std::realloc(std::malloc(8), 8000));
    grown[7999] = 'z';
    std::free(grown);
}

void ReadBehindABlock()
{
    const std::vector<char> block(32);
    static_cast<void>(Unseen(*(block.data() + Unseen(32))));
}

void ReadBeforeABlock()
{
    const std::vector<char> block(32);
    static_cast<void>(Unseen(*(block.data() - Unseen(1))));
}

void ReadAFreedBlock()
{
    auto block = std::make_unique<std::vector<char>>(32);
    const char* const stale = block->data();
    block.reset();
    static_cast<void>(Unseen(*Unseen(stale)));
}

void WriteOneByteBehindAnOddBlock()
{
    std::vector<char> block(33);
    *(block.data() + Unseen(33)) = 'x';
}

TEST(GuardedHeap, ServesAProgramThatKeepsToItsBlocks)
{
    EXPECT_EQ(EndOfChild(L"end", KeepToTheBlocks), kOperationReturned);
    EXPECT_EQ(EndOfChild(L"start", KeepToTheBlocks), kOperationReturned);
}

TEST(GuardedHeap, FaultsIfABlockIsReadPastItsEnd)
{
    EXPECT_EQ(EndOfChild(L"end", ReadBehindABlock), kAccessViolation);
}

TEST(GuardedHeap, FaultsIfABlockIsReadBeforeItsStart)
{
    EXPECT_EQ(EndOfChild(L"start", ReadBeforeABlock), kAccessViolation);
}

TEST(GuardedHeap, FaultsIfAFreedBlockIsRead)
{
    EXPECT_EQ(EndOfChild(L"end", ReadAFreedBlock), kAccessViolation);
    EXPECT_EQ(EndOfChild(L"start", ReadAFreedBlock), kAccessViolation);
}

TEST(GuardedHeap, ReportsAWriteIntoTheAlignmentAfterABlock)
{
    EXPECT_EQ(EndOfChild(L"end", WriteOneByteBehindAnOddBlock), kReported);
}

TEST(GuardedHeap, IsOffByDefault)
{
    EXPECT_EQ(EndOfChild(nullptr, ReadBehindABlock), kOperationReturned);
}

} // namespace
} // namespace kestraboot::tests
