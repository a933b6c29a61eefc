#include "service/extension_set.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

ExtensionSet SetOf(std::initializer_list<const wchar_t*> extensions)
{
    std::vector<formatInfo_tag> formats;
    for (const wchar_t* const extension : extensions) {
        formats.push_back({extension, L"Image"});
    }
    return ExtensionSet(formats);
}

TEST(ExtensionSet, FindsEachListedExtensionInAnyLetterCase)
{
    const ExtensionSet set = SetOf({L"tif", L"JPG", L"avi", L"jp2", L"JPG", L"x3f"});
    for (const wchar_t* const listed : {L"tif", L"TIF", L"jpg", L"Jpg", L"aVi", L"jp2", L"X3F"}) {
        EXPECT_TRUE(set.Contains(listed)) << listed;
    }
}

TEST(ExtensionSet, FindsNothingElse)
{
    const ExtensionSet set = SetOf({L"tif", L"jpg"});
    for (const wchar_t* const other :
         {L"", L"t", L"ti", L"tiff", L"jp", L"jpgx", L"zzz", L".jpg", L"jpg "}) {
        EXPECT_FALSE(set.Contains(other)) << other;
    }
}

TEST(ExtensionSet, NeverHoldsPdf)
{
    const ExtensionSet set = SetOf({L"pdf", L"PDF", L"jpg"});
    EXPECT_FALSE(set.Contains(L"pdf"));
    EXPECT_FALSE(set.Contains(L"Pdf"));
    EXPECT_TRUE(set.Contains(L"jpg"));
}

TEST(ExtensionSet, HoldsExtensionsThatOnlyResemblePdf)
{
    const ExtensionSet set = SetOf({L"pdfx", L"pd", L"xpdf"});
    for (const wchar_t* const listed : {L"pdfx", L"pd", L"xpdf"}) {
        EXPECT_TRUE(set.Contains(listed)) << listed;
    }
}

TEST(ExtensionSet, AnEmptyExtensionMatchesOnlyAnEmptyEntry)
{
    EXPECT_TRUE(SetOf({L"jpg", L""}).Contains(L""));
    EXPECT_FALSE(SetOf({}).Contains(L""));
}

TEST(FileExtension, IsWhatFollowsTheLastDot)
{
    EXPECT_STREQ(FileExtension(L"IMG_0001.JPG"), L"JPG");
    EXPECT_STREQ(FileExtension(L"a.b.c"), L"c");
    EXPECT_STREQ(FileExtension(L".jpg"), L"jpg");
    EXPECT_STREQ(FileExtension(L"name."), L"");
    EXPECT_EQ(FileExtension(L"name"), nullptr);
    EXPECT_EQ(FileExtension(L""), nullptr);
}

} // namespace
} // namespace kestraboot
