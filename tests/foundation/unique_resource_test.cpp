#include "foundation/handles.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestraboot
{
namespace
{

std::vector<int> closedNumbers;

struct NumberTraits {
    using Resource = int;
    static Resource Invalid() noexcept { return -1; }
    static void Close(Resource number) noexcept { closedNumbers.push_back(number); }
};
using UniqueNumber = UniqueResource<NumberTraits>;
using Numbers = std::vector<int>;

struct Owner : testing::Test {
    Owner() { closedNumbers.clear(); }
};

TEST_F(Owner, ClosesOnceAtTheEndOfItsLife)
{
    {
        const UniqueNumber owner(3);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), 3);
        EXPECT_EQ(closedNumbers, Numbers{});
    }
    EXPECT_EQ(closedNumbers, Numbers{3});
}

TEST_F(Owner, OfNothingClosesNothing)
{
    {
        const UniqueNumber none;
        const UniqueNumber invalid(-1);
        EXPECT_FALSE(none);
        EXPECT_FALSE(invalid);
    }
    EXPECT_EQ(closedNumbers, Numbers{});
}

TEST_F(Owner, ThatReleasedItsResourceClosesNothing)
{
    {
        UniqueNumber owner(3);
        EXPECT_EQ(owner.release(), 3);
        EXPECT_FALSE(owner);
    }
    EXPECT_EQ(closedNumbers, Numbers{});
}

TEST_F(Owner, ClosesTheOldResourceWhenItGetsAnother)
{
    {
        UniqueNumber owner(3);
        owner.reset(4);
        EXPECT_EQ(closedNumbers, Numbers{3});
        owner = UniqueNumber(5);
        EXPECT_EQ(closedNumbers, (Numbers{3, 4}));
    }
    EXPECT_EQ(closedNumbers, (Numbers{3, 4, 5}));
}

TEST_F(Owner, PassesItsResourceOnWhenMoved)
{
    {
        UniqueNumber first(3);
        const UniqueNumber second = std::move(first);
        EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(second.get(), 3);
    }
    EXPECT_EQ(closedNumbers, Numbers{3});
}

TEST_F(Owner, OfEachKindKnowsItsInvalidValue)
{
    EXPECT_EQ(UniqueKernelHandle().get(), nullptr);
    EXPECT_EQ(UniqueFindHandle().get(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(UniqueRegistryHandle().get(), nullptr);
    EXPECT_EQ(UniqueModule().get(), nullptr);
}

} // namespace
} // namespace kestraboot
