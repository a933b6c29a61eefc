// The host's enumerator: any list, walked with records of any version and size.
#include "tests/endurance/fuzz/fuzz.h"
#include "trackers/mox/source_enumerator.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kestraboot::fuzz
{
namespace
{

mox::PluginDescriptor AnyDescriptor(Random& random)
{
    mox::PluginDescriptor plugin = {};
    plugin.value = random.Bits();
    plugin.identifier.data1 = random.Bits();
    const std::wstring name = random.Text();
    name.copy(plugin.name, random.Chance(90) ? 259 : 260);
    return plugin;
}

bool Same(const mox::SourceInfo& left, const mox::SourceInfo& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

TEST(SourceEnumeratorFuzz, FillsValidRecordsAlone)
{
    Fuzz({.usual = 3'000}, [](Random& random) {
        std::list<mox::PluginDescriptor> plugins(random.Below(5));
        for (mox::PluginDescriptor& plugin : plugins) {
            plugin = AnyDescriptor(random);
        }
        mox::IEnumSourceManager* made = nullptr;
        ASSERT_EQ(CreateSourceEnumerator(plugins, &made), mox::kSuccess);
        std::uint32_t references = 1;
        auto next = plugins.begin();
        for (std::size_t step = random.Below(20); step > 0; --step) {
            switch (random.Below(8)) {
            case 0:
                EXPECT_EQ(made->Reset(), mox::kSuccess);
                next = plugins.begin();
                break;
            case 1: {
                std::uint32_t count = 99;
                EXPECT_EQ(made->GetCount(&count), mox::kSuccess);
                EXPECT_EQ(count, plugins.size());
                break;
            }
            case 2: {
                const auto number = static_cast<mox::InterfaceNumber>(random.Below(15));
                const bool has = number == 0 || number == 8 || number == 9;
                void* object = made;
                EXPECT_EQ(made->Query(number, &object), has) << number;
                EXPECT_EQ(object, has ? static_cast<void*>(made) : nullptr) << number;
                references += has ? 1 : 0;
                break;
            }
            default: {
                mox::SourceInfo info;
                std::memset(&info, 0x5A, sizeof info);
                info.version = random.Pick({1U, 1U, 1U, 1U, 0U, 2U});
                info.size = random.Pick({560U, 560U, 560U, 560U, 556U, 0U, 564U});
                mox::SourceInfo expected = info;
                mox::Status status = mox::kSuccess;
                if (next == plugins.end()) {
                    status = mox::kEndOfEnumeration;
                } else if (info.version != 1 || info.size != 560) {
                    status = mox::kBadArgument;
                } else {
                    std::memcpy(expected.name, next->name, sizeof expected.name);
                    expected.name[259] = L'\0';
                    expected.value = next->value;
                    expected.identifier = next->identifier;
                    ++next;
                }
                EXPECT_EQ(made->Next(&info), status);
                // Behind the name's terminator a caller finds nothing that it may rely on.
                const std::size_t length = std::wcslen(expected.name);
                if (status == mox::kSuccess) {
                    EXPECT_EQ(std::wcsncmp(info.name, expected.name, 260), 0);
                    std::memcpy(info.name + length, expected.name + length, (260 - length) * 2);
                }
                EXPECT_TRUE(Same(info, expected));
            }
            }
        }
        for (; references > 0; --references) {
            EXPECT_EQ(made->Release(), references - 1);
        }
    });
}

} // namespace
} // namespace kestraboot::fuzz
