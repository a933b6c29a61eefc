#include "tools/trace/channel/line_queue.h"

#include <gmock/gmock.h>

#include <thread>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;

constexpr std::chrono::milliseconds kNoWait = std::chrono::milliseconds(0);
constexpr std::chrono::milliseconds kLong = std::chrono::minutes(1);

RawLine Line(const std::string& text)
{
    return {0, 0, 1, "a.exe", text};
}

std::vector<std::string> Taken(LineQueue& queue, std::chrono::milliseconds longest)
{
    std::vector<std::string> texts;
    for (const RawLine& line : queue.Take(longest)) {
        texts.push_back(line.text);
    }
    return texts;
}

TEST(LineQueue, GivesLinesInTheirOrder)
{
    LineQueue queue(4);
    queue.Push(Line("one"));
    queue.Push(Line("two"));
    EXPECT_THAT(Taken(queue, kNoWait), ElementsAre("one", "two"));
    EXPECT_THAT(Taken(queue, kNoWait), ElementsAre());
}

TEST(LineQueue, LosesAndCountsWhatItCannotHold)
{
    LineQueue queue(2);
    for (int i = 0; i < 5; ++i) {
        queue.Push(Line(std::to_string(i)));
    }
    EXPECT_EQ(queue.TakeLost(), 3U);
    EXPECT_EQ(queue.TakeLost(), 0U) << "reported once";
    EXPECT_THAT(Taken(queue, kNoWait), ElementsAre("0", "1"));
    queue.Push(Line("later"));
    EXPECT_THAT(Taken(queue, kNoWait), ElementsAre("later"));
    EXPECT_EQ(queue.TakeLost(), 0U);
}

TEST(LineQueue, IsFinishedWhenItIsClosedAndEmpty)
{
    LineQueue queue(2);
    queue.Push(Line("last"));
    queue.Close();
    EXPECT_FALSE(queue.Finished());
    EXPECT_THAT(Taken(queue, kLong), ElementsAre("last"));
    EXPECT_TRUE(queue.Finished());
    EXPECT_THAT(Taken(queue, kLong), ElementsAre()) << "without waiting";
}

TEST(LineQueue, WakesTheWaitingReader)
{
    LineQueue queue(2);
    std::thread writer([&] {
        queue.Push(Line("here"));
    });
    EXPECT_THAT(Taken(queue, kLong), ElementsAre("here"));
    writer.join();
}

} // namespace
} // namespace kestraboot::tools
