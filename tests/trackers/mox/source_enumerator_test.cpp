#include "trackers/mox/source_enumerator.h"

#include "foundation/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace kestraboot
{
namespace
{

mox::PluginDescriptor Described(const wchar_t* name, std::uint32_t value)
{
    mox::PluginDescriptor plugin = {};
    CopyToField(plugin.name, name);
    plugin.value = value;
    plugin.identifier.data1 = value + 100;
    return plugin;
}

class SourceEnumerator : public testing::Test
{
protected:
    SourceEnumerator()
    {
        info.version = 1;
        info.size = 560;
    }
    ~SourceEnumerator() override
    {
        if (sources != nullptr) {
            EXPECT_EQ(sources->Release(), 0U) << "a reference is left";
        }
    }

    void Make(const std::list<mox::PluginDescriptor>& plugins)
    {
        ASSERT_EQ(CreateSourceEnumerator(plugins, &sources), mox::kSuccess);
    }

    mox::IEnumSourceManager* sources = nullptr;
    mox::SourceInfo info = {};
};

TEST_F(SourceEnumerator, NeedsAnOutputThatPointsAtNothing)
{
    EXPECT_EQ(CreateSourceEnumerator({}, nullptr), 0xC000000AU);
    Make({});
    mox::IEnumSourceManager* const before = sources;
    EXPECT_EQ(CreateSourceEnumerator({}, &sources), 0xC000000AU);
    EXPECT_EQ(sources, before);
}

TEST_F(SourceEnumerator, ReturnsTheSourcesInOrderAndThenTheEnd)
{
    Make({Described(L"alpha", 1), Described(L"beta", 2)});
    EXPECT_EQ(sources->Next(&info), 0U);
    EXPECT_STREQ(info.name, L"alpha");
    EXPECT_EQ(info.value, 1U);
    EXPECT_EQ(info.identifier.data1, 101U);
    EXPECT_EQ(sources->Next(&info), 0U);
    EXPECT_STREQ(info.name, L"beta");
    for (int again = 0; again < 3; ++again) {
        EXPECT_EQ(sources->Next(&info), 0xD0000001U);
        EXPECT_STREQ(info.name, L"beta") << "the record was changed";
    }
    EXPECT_EQ(sources->Reset(), 0U);
    EXPECT_EQ(sources->Next(&info), 0U);
    EXPECT_STREQ(info.name, L"alpha");
}

TEST_F(SourceEnumerator, OfNoPluginsIsAtItsEnd)
{
    Make({});
    EXPECT_EQ(sources->Next(&info), 0xD0000001U);
    EXPECT_EQ(sources->Next(nullptr), 0xD0000001U);
}

TEST_F(SourceEnumerator, RefusesARecordOfAnotherSizeOrVersionAndKeepsItsPosition)
{
    Make({Described(L"alpha", 1)});
    for (const auto& [version, size] :
         {std::pair(1U, 556U), {1U, 564U}, {1U, 0U}, {0U, 560U}, {2U, 560U}}) {
        mox::SourceInfo other = {};
        other.version = version;
        other.size = size;
        const mox::SourceInfo before = other;
        EXPECT_EQ(sources->Next(&other), 0xC000000AU) << version << " " << size;
        EXPECT_EQ(std::memcmp(&other, &before, sizeof other), 0);
    }
    EXPECT_EQ(sources->Next(nullptr), 0xC000000AU);
    EXPECT_EQ(sources->Next(&info), 0U);
}

TEST_F(SourceEnumerator, WritesNameValueAndIdentifierAlone)
{
    Make({Described(L"alpha", 1)});
    info.reserved4 = 11;
    info.reserved12 = 12;
    info.reserved556 = 13;
    EXPECT_EQ(sources->Next(&info), 0U);
    EXPECT_EQ(info.reserved4, 11U);
    EXPECT_EQ(info.reserved12, 12U);
    EXPECT_EQ(info.reserved556, 13U);
}

TEST_F(SourceEnumerator, CarriesANameOf259Characters)
{
    const std::wstring name(259, L'n');
    Make({Described(name.c_str(), 1)});
    EXPECT_EQ(sources->Next(&info), 0U);
    EXPECT_EQ(info.name, name);
}

TEST_F(SourceEnumerator, ReturnsTheCount)
{
    Make({Described(L"alpha", 1), Described(L"beta", 2)});
    std::uint32_t count = 99;
    EXPECT_EQ(sources->GetCount(&count), 0U);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(sources->GetCount(nullptr), 0xC000000AU);
}

TEST_F(SourceEnumerator, AnswersToItsThreeInterfacesAndNoOther)
{
    Make({});
    for (const mox::InterfaceNumber number : {0U, 8U, 9U}) {
        void* object = nullptr;
        EXPECT_TRUE(sources->Query(number, &object)) << number;
        EXPECT_EQ(object, static_cast<void*>(sources)) << number;
        EXPECT_EQ(sources->Release(), 1U) << number;
    }
    for (const mox::InterfaceNumber number : {1U, 7U, 10U, 13U, 0xFFFFFFFFU}) {
        void* object = this;
        EXPECT_FALSE(sources->Query(number, &object)) << number;
        EXPECT_EQ(object, nullptr) << number;
    }
    EXPECT_FALSE(sources->Query(8, nullptr));
    EXPECT_EQ(sources->AddReference(), 2U);
    EXPECT_EQ(sources->Release(), 1U);
}

} // namespace
} // namespace kestraboot
