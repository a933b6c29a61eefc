#include "foundation/file_formats.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

TEST(FileFormats, AreAppendedWithTheirKind)
{
    std::vector<formatInfo_tag> formats = {{L"old", L"Audio"}};
    AppendFormats(formats, L" jpg  TIF jpg", L"Image");
    ASSERT_EQ(formats.size(), 4U);
    EXPECT_EQ(formats[0].Extension, L"old");
    EXPECT_EQ(formats[1].Extension, L"jpg");
    EXPECT_EQ(formats[2].Extension, L"TIF");
    EXPECT_EQ(formats[3].Extension, L"jpg");
    EXPECT_EQ(formats[0].MediaType, L"Audio");
    EXPECT_EQ(formats[3].MediaType, L"Image");
}

} // namespace
} // namespace kestraboot
