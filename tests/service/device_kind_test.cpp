#include "service/device_kind.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

std::wstring Word(std::uint32_t code)
{
    return DeviceKindWord(static_cast<DeviceKind>(code));
}

TEST(DeviceKind, EachCodeHasItsWordInLowerCase)
{
    const wchar_t* const words[] = {L"unknown", L"camera", L"mobile", L"scanner",
                                    L"video",   L"audio",  L"volume", L"archive"};
    for (std::uint32_t code = 0; code < 8; ++code) {
        EXPECT_EQ(Word(code), words[code]) << code;
    }
}

TEST(DeviceKind, EveryOtherCodeIsUnknown)
{
    for (const std::uint32_t code : {8U, 9U, 10U, 255U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(Word(code), L"unknown") << code;
    }
}

} // namespace
} // namespace kestraboot
