#include "registry/supported_formats.h"

#include "tests/registry/handler.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct SupportedFormats : testing::Test {
    void Add(std::uint32_t defaultFlag, std::vector<formatInfo_tag> formats)
    {
        handler.applications.emplace_back();
        handler.applications.back().DefaultFlag = defaultFlag;
        handler.applications.back().FileFormats = std::move(formats);
    }
    Names Ask()
    {
        std::vector<formatInfo_tag> formats;
        GetSupportedFormats(handler, formats);
        Names read;
        for (const formatInfo_tag& format : formats) {
            read.push_back(format.MediaType + L':' + format.Extension);
        }
        return read;
    }
    RegistrySandbox sandbox;
    OpenHandler handler;
};

TEST_F(SupportedFormats, AreThoseOfTheDefaultsAlone)
{
    Add(0, {{L"tif", L"Image"}});
    Add(1, {{L"jpg", L"Image"}, {L"avi", L"Video"}});
    Add(2, {{L"jpg", L"Image"}, {L"PNG", L"Image"}});
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_EQ(Ask(), (Names{L"Image:jpg", L"Video:avi", L"Image:jpg", L"Image:PNG"}));
}

TEST_F(SupportedFormats, AreThoseOfAllWithoutADefault)
{
    Add(0, {{L"tif", L"Image"}});
    Add(0, {{L"avi", L"Video"}});
    EXPECT_EQ(Ask(), (Names{L"Image:tif", L"Video:avi"}));
}

TEST_F(SupportedFormats, EndWithTheOrganisersWithoutADefault)
{
    Add(0, {{L"xyz", L"Image"}});
    RegisterOrganiser(L"C:\\Legacy");
    const Names formats = Ask();
    ASSERT_EQ(formats.size(), 1U + 35U + 9U); // without its three audio kinds
    EXPECT_EQ(formats.front(), L"Image:xyz");
    EXPECT_EQ(formats[1], L"Image:jpg");
    EXPECT_EQ(formats.back(), L"Video:wmv");
}

TEST_F(SupportedFormats, AreTheOrganisersAloneWithoutAnyApplication)
{
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_EQ(Ask().size(), 44U);
}

TEST_F(SupportedFormats, NeverHoldAudioInWhateverCase)
{
    Add(1, {{L"mp3", L"Audio"}, {L"jpg", L"Image"}, {L"wav", L"AUDIO"}, {L"x", L"Audios"}});
    EXPECT_EQ(Ask(), (Names{L"Image:jpg", L"Audios:x"}));
}

TEST_F(SupportedFormats, OfDefaultsWithNothingButAudioAreNone)
{
    Add(1, {{L"mp3", L"Audio"}});
    Add(1, {{L"wav", L"Audio"}});
    Add(0, {{L"jpg", L"Image"}});
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_EQ(Ask(), Names{});
}

TEST_F(SupportedFormats, AreAppendedToTheCallersList)
{
    Add(1, {{L"jpg", L"Image"}});
    std::vector<formatInfo_tag> formats = {{L"old", L"Audio"}};
    GetSupportedFormats(handler, formats);
    ASSERT_EQ(formats.size(), 2U);
    EXPECT_EQ(formats[0].Extension, L"old");
    EXPECT_EQ(formats[1].Extension, L"jpg");
}

} // namespace
} // namespace kestraboot
