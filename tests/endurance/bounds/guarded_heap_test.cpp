// The guarded heap itself, in processes of its own that it ends.
#include "tests/support/child_test.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace kestraboot::tests
{
namespace
{

constexpr unsigned long kAccessViolation = 0xC0000005;
constexpr unsigned long kReported = 97;

unsigned long EndOfChild(const wchar_t* side, const char* test)
{
    wchar_t before[16] = {};
    const bool guarded = ::GetEnvironmentVariableW(L"KESTRABOOT_GUARD", before, 16) != 0;
    ::SetEnvironmentVariableW(L"KESTRABOOT_GUARD", side);
    const ChildEnd end = RunChildTest(std::string("ChildWithAGuardedHeap.DISABLED_") + test);
    ::SetEnvironmentVariableW(L"KESTRABOOT_GUARD", guarded ? before : nullptr);
    return end.exitCode;
}

/// Keeps the compiler from seeing what is wrong here.
template <typename Value>
Value Unseen(Value value)
{
    volatile Value hidden = value;
    return hidden;
}

// Most of these end their process, so none runs in this one: the tests at the end of this file run them,
// every one, in child processes.
TEST(ChildWithAGuardedHeap, DISABLED_KeepsToItsBlocks)
{
    CallInChild([] {
        for (std::size_t size = 0; size < 20'000; size = size * 2 + 1) {
            std::vector<char> block(size, 'x');
            std::wstring text(size, L'x');
            text += L"and on";
            block.push_back('y');
            ASSERT_EQ(text.size(), size + 6);
        }
        auto* grown = static_cast<char*>(std::realloc(std::malloc(8), 8000));
        grown[7999] = 'z';
        std::free(grown);
    });
}

TEST(ChildWithAGuardedHeap, DISABLED_ReadsBehindABlock)
{
    CallInChild([] {
        const std::vector<char> block(32);
        static_cast<void>(Unseen(*(block.data() + Unseen(32))));
    });
}

TEST(ChildWithAGuardedHeap, DISABLED_ReadsBeforeABlock)
{
    CallInChild([] {
        const std::vector<char> block(32);
        static_cast<void>(Unseen(*(block.data() - Unseen(1))));
    });
}

TEST(ChildWithAGuardedHeap, DISABLED_ReadsAFreedBlock)
{
    CallInChild([] {
        auto block = std::make_unique<std::vector<char>>(32);
        const char* const stale = block->data();
        block.reset();
        static_cast<void>(Unseen(*Unseen(stale)));
    });
}

TEST(ChildWithAGuardedHeap, DISABLED_WritesOneByteBehindAnOddBlock)
{
    CallInChild([] {
        std::vector<char> block(33);
        *(block.data() + Unseen(33)) = 'x';
    });
}

TEST(GuardedHeap, ServesAProgramThatKeepsToItsBlocks)
{
    EXPECT_EQ(EndOfChild(L"end", "KeepsToItsBlocks"), kOperationReturned);
    EXPECT_EQ(EndOfChild(L"start", "KeepsToItsBlocks"), kOperationReturned);
}

TEST(GuardedHeap, FaultsWhereABlockIsReadBehindItsEnd)
{
    EXPECT_EQ(EndOfChild(L"end", "ReadsBehindABlock"), kAccessViolation);
}

TEST(GuardedHeap, FaultsWhereABlockIsReadBeforeItsStart)
{
    EXPECT_EQ(EndOfChild(L"start", "ReadsBeforeABlock"), kAccessViolation);
}

TEST(GuardedHeap, FaultsWhereAFreedBlockIsRead)
{
    EXPECT_EQ(EndOfChild(L"end", "ReadsAFreedBlock"), kAccessViolation);
    EXPECT_EQ(EndOfChild(L"start", "ReadsAFreedBlock"), kAccessViolation);
}

TEST(GuardedHeap, TellsOfAWriteIntoTheAlignmentBehindABlock)
{
    EXPECT_EQ(EndOfChild(L"end", "WritesOneByteBehindAnOddBlock"), kReported);
}

TEST(GuardedHeap, IsNotThereUnlessAskedFor)
{
    EXPECT_EQ(EndOfChild(nullptr, "ReadsBehindABlock"), kOperationReturned);
}

} // namespace
} // namespace kestraboot::tests
