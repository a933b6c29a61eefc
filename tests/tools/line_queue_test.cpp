#include "tools/trace/channel/line_queue.h"

#include <gtest/gtest.h>

#include <thread>

namespace kestraboot::tools
{
namespace
{

constexpr std::chrono::milliseconds kNoWait = std::chrono::milliseconds(0);
constexpr std::chrono::milliseconds kLong = std::chrono::minutes(1);

SeenLine Line(const std::string& text)
{
    return {{}, 1, "a.exe", text};
}

TEST(LineQueue, GivesLinesInTheirOrder)
{
    LineQueue queue(4);
    queue.Push(Line("one"));
    queue.Push(Line("two"));
    EXPECT_EQ(queue.Pop(kNoWait)->text, "one");
    EXPECT_EQ(queue.Pop(kNoWait)->text, "two");
    EXPECT_FALSE(queue.Pop(kNoWait));
}

TEST(LineQueue, LosesAndCountsWhatItCannotHold)
{
    LineQueue queue(2);
    for (int i = 0; i < 5; ++i) {
        queue.Push(Line(std::to_string(i)));
    }
    EXPECT_EQ(queue.TakeLost(), 3U);
    EXPECT_EQ(queue.TakeLost(), 0U) << "told once";
    EXPECT_EQ(queue.Pop(kNoWait)->text, "0");
    queue.Push(Line("later"));
    EXPECT_EQ(queue.Pop(kNoWait)->text, "1");
    EXPECT_EQ(queue.Pop(kNoWait)->text, "later");
    EXPECT_EQ(queue.TakeLost(), 0U);
}

TEST(LineQueue, IsFinishedWhenItIsClosedAndEmpty)
{
    LineQueue queue(2);
    queue.Push(Line("last"));
    queue.Close();
    EXPECT_FALSE(queue.Finished());
    EXPECT_TRUE(queue.Pop(kLong));
    EXPECT_TRUE(queue.Finished());
    EXPECT_FALSE(queue.Pop(kLong)) << "without waiting";
}

TEST(LineQueue, WakesWhoWaits)
{
    LineQueue queue(2);
    std::thread writer([&] {
        queue.Push(Line("here"));
    });
    const auto line = queue.Pop(kLong);
    writer.join();
    ASSERT_TRUE(line);
    EXPECT_EQ(line->text, "here");
}

} // namespace
} // namespace kestraboot::tools
