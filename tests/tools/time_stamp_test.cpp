#include "tools/trace/lines/time_stamp.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kMoment = 1'795'264'427'123; // 2026-11-21T12:33:47.123Z

TEST(TimeStamp, ShowsLocalTime)
{
    EXPECT_EQ(ClockText({kMoment, 0, 0}), "12:33:47.123");
    EXPECT_EQ(ClockText({kMoment, 330, 0}), "18:03:47.123");
    EXPECT_EQ(DayText({kMoment, 0, 0}), "2026-11-21");
}

TEST(TimeStamp, PassesMidnightWithLocalTime)
{
    EXPECT_EQ(DayText({kMoment, 12 * 60, 0}), "2026-11-22");
    EXPECT_EQ(ClockText({kMoment, 12 * 60, 0}), "00:33:47.123");
    EXPECT_EQ(DayText({kMoment, -13 * 60, 0}), "2026-11-20");
}

TEST(TimeStamp, HasTheOffsetInJson)
{
    EXPECT_EQ(IsoText({kMoment, 0, 0}), "2026-11-21T12:33:47.123+00:00");
    EXPECT_EQ(IsoText({kMoment, 330, 0}), "2026-11-21T18:03:47.123+05:30");
    EXPECT_EQ(IsoText({kMoment, -570, 0}), "2026-11-21T03:03:47.123-09:30");
}

TEST(TimeStamp, KnowsLeapDays)
{
    EXPECT_EQ(DayText({1'709'164'800'000, 0, 0}), "2024-02-29");
}

TEST(TimeStamp, ShowsDurationsInSeconds)
{
    EXPECT_EQ(DurationText(0), "0.000 s");
    EXPECT_EQ(DurationText(62'005), "62.005 s");
}

} // namespace
} // namespace kestraboot::tools
