#include "foundation/organiser_constants.h"

#include "foundation/file_formats.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

std::size_t PiecesOf(std::wstring_view extensions)
{
    std::vector<formatInfo_tag> formats;
    AppendFormats(formats, extensions, L"Image");
    return formats.size();
}

TEST(OrganiserConstants, NameTheOrganiser)
{
    EXPECT_EQ(kOrganiserName, L"Corvane Vellumry 3.0");
    EXPECT_EQ(kOrganiserDescription, L"Organize and edit pictures using");
}

TEST(OrganiserConstants, ListTheImageExtensions)
{
    EXPECT_EQ(kOrganiserImageExtensions,
              L"jpg jpe jpeg png tif tiff psd wbmp wbm tga vda icb vst pxr pcx jpf jpx jp2 j2c j2k jpc "
              L"gif crw nef raf orf mrw dcr mos raw pef srf dnf x3f cr2");
    EXPECT_EQ(PiecesOf(kOrganiserImageExtensions), 35U);
}

TEST(OrganiserConstants, ListTheAudioAndVideoExtensions)
{
    EXPECT_EQ(kOrganiserAudioExtensions, L"wma mp3 wav");
    EXPECT_EQ(kOrganiserVideoExtensions, L"3gp 3g2 avi mov mpg mpe mpeg mp4 wmv");
    EXPECT_EQ(PiecesOf(kOrganiserVideoExtensions), 9U);
}

} // namespace
} // namespace kestraboot
