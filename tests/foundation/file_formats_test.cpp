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

using Extensions = std::vector<std::wstring>;

Extensions Cut(std::wstring_view text)
{
    std::vector<formatInfo_tag> formats;
    AppendFormats(formats, text, L"Video");
    Extensions extensions;
    for (const formatInfo_tag& format : formats) {
        extensions.push_back(format.Extension);
    }
    return extensions;
}

TEST(FileFormats, KeepTheOrderAndTheLastPiece)
{
    EXPECT_EQ(Cut(L"wma mp3 wav"), (Extensions{L"wma", L"mp3", L"wav"}));
    EXPECT_EQ(Cut(L"one"), (Extensions{L"one"}));
}

TEST(FileFormats, SkipEmptyPieces)
{
    EXPECT_EQ(Cut(L" jpg  tif "), (Extensions{L"jpg", L"tif"}));
    EXPECT_EQ(Cut(L""), Extensions{});
    EXPECT_EQ(Cut(L"   "), Extensions{});
}

TEST(FileFormats, AreNotTrimmedFurther)
{
    EXPECT_EQ(Cut(L".JPG,\ttif jpg jpg"), (Extensions{L".JPG,\ttif", L"jpg", L"jpg"}));
}

TEST(FileFormats, AreCompleteBeyondTheUsualNumber)
{
    std::wstring text;
    for (int i = 0; i < 100; ++i) {
        text += std::to_wstring(i) + L' ';
    }
    const Extensions extensions = Cut(text);
    ASSERT_EQ(extensions.size(), 100U);
    EXPECT_EQ(extensions.back(), L"99");
}

} // namespace
} // namespace kestraboot
