#include "tests/registry/handler.h"
#include "tests/support/allocation_failure.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

struct Queries : testing::Test {
    Queries()
    {
        handler.applications.resize(4);
        const wchar_t* const names[] = {L"One", L"Two", L"Two", L"Four"};
        for (std::size_t i = 0; i < 4; ++i) {
            handler.applications[i].Name = names[i];
            handler.applications[i].KeyPath = L"key " + std::to_wstring(i);
            handler.applications[i].FileFormats = {{L"jpg", L"Image"}, {L"mp3", L"Audio"}};
        }
        handler.applications[1].DefaultFlag = 1;
        handler.applications[3].DefaultFlag = 0x80000000;
    }
    OpenHandler handler;
};

std::vector<std::wstring> Keys(const std::vector<appInfo_tag>& records)
{
    std::vector<std::wstring> keys;
    for (const appInfo_tag& record : records) {
        keys.push_back(record.KeyPath);
    }
    return keys;
}

TEST_F(Queries, ForAllReplaceTheCallersList)
{
    std::vector<appInfo_tag> all(7);
    EXPECT_TRUE(handler.GetAllApplicationInfo(all));
    EXPECT_EQ(Keys(all), (Names{L"key 0", L"key 1", L"key 2", L"key 3"}));
    EXPECT_EQ(all[2].FileFormats.size(), 2U);
    EXPECT_EQ(handler.applications.size(), 4U); // a copy
}

TEST_F(Queries, ForAllOfAnEmptyListEmptyTheCallers)
{
    handler.applications.clear();
    std::vector<appInfo_tag> all(7);
    EXPECT_TRUE(handler.GetAllApplicationInfo(all));
    EXPECT_TRUE(all.empty());
}

TEST_F(Queries, ForAllIntoTheHandlersOwnListLeaveItUnchanged)
{
    const appInfo_tag* const before = handler.applications.data();
    EXPECT_TRUE(handler.GetAllApplicationInfo(handler.applications));
    EXPECT_EQ(Keys(handler.applications), (Names{L"key 0", L"key 1", L"key 2", L"key 3"}));
    EXPECT_EQ(handler.applications.data(), before);
}

TEST_F(Queries, ByNameFindTheFirst)
{
    appInfo_tag out;
    std::wstring name = L"Two";
    EXPECT_TRUE(handler.GetApplicationInfo(name, out));
    EXPECT_EQ(out.KeyPath, L"key 1");
    EXPECT_EQ(out.FileFormats.size(), 2U);
    EXPECT_EQ(name, L"Two");
}

TEST_F(Queries, ByNameAreExactAndLeaveTheRecordUnchangedIfThereIsNone)
{
    for (std::wstring name : {L"two", L"TWO", L"Tw", L"Two ", L"", L"Three"}) {
        appInfo_tag out;
        out.Name = L"before";
        EXPECT_FALSE(handler.GetApplicationInfo(name, out)) << name;
        EXPECT_EQ(out.Name, L"before");
    }
}

TEST_F(Queries, ForDefaultsAppendEveryNonzeroFlagInOrder)
{
    std::vector<appInfo_tag> defaults(1);
    defaults[0].KeyPath = L"kept";
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults));
    EXPECT_EQ(Keys(defaults), (Names{L"kept", L"key 1", L"key 3"}));
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults));
    EXPECT_EQ(Keys(defaults), (Names{L"kept", L"key 1", L"key 3", L"key 1", L"key 3"}));
}

TEST_F(Queries, ForDefaultsAreTrueWithoutAny)
{
    handler.applications.resize(1);
    std::vector<appInfo_tag> defaults;
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults));
    EXPECT_TRUE(defaults.empty());
}

TEST_F(Queries, ForDefaultsIntoTheHandlersOwnListAppendCopies)
{
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(handler.applications));
    EXPECT_EQ(Keys(handler.applications),
              (Names{L"key 0", L"key 1", L"key 2", L"key 3", L"key 1", L"key 3"}));
}

TEST_F(Queries, ForDefaultsAppendAllOrNoneIfMemoryRunsOut)
{
    bool happened = true;
    for (int successes = 0; happened; ++successes) {
        std::vector<appInfo_tag> list(1); // has no room for more
        bool answer = true;
        {
            const tests::AllocationFailure failure(successes);
            answer = handler.GetDefaultApplicationInfo(list);
        }
        happened = tests::AllocationFailure::Happened();
        EXPECT_EQ(answer, !happened) << successes;
        EXPECT_EQ(list.size(), happened ? 1U : 3U) << successes;
    }
}

TEST_F(Queries, OutOfMemoryAreFalseAndLeaveTheCallersRecordsUnchanged)
{
    for (appInfo_tag& record : handler.applications) {
        record.Desc.assign(100, L'd');
    }
    bool answer = true;
    std::vector<appInfo_tag> list;
    std::wstring name = L"Two";
    appInfo_tag out;
    const auto untouched = [&](bool threw) {
        EXPECT_FALSE(threw);
        EXPECT_FALSE(answer);
        EXPECT_EQ(Keys(list), Names{L"before"});
        EXPECT_EQ(out.Name, L"before");
    };
    const auto prepared = [&](auto query) {
        return [&, query] {
            out.Name = L"before";
            list.resize(1);
            list[0].KeyPath = L"before";
            answer = query();
        };
    };
    out.Name = L"before";
    list.reserve(8);
    EXPECT_GT(tests::ForEveryAllocation(prepared([&] {
                                            return handler.GetDefaultApplicationInfo(list);
                                        }),
                                        untouched),
              4);
    EXPECT_TRUE(answer);
    out.Name = L"before";
    EXPECT_GT(tests::ForEveryAllocation(prepared([&] {
                                            std::vector<appInfo_tag> copy;
                                            copy.swap(list);
                                            const bool done = handler.GetAllApplicationInfo(copy);
                                            copy.swap(list);
                                            return done;
                                        }),
                                        untouched),
              4);
    EXPECT_TRUE(answer);
    list.resize(1);
    list[0].KeyPath = L"before";
    EXPECT_GT(tests::ForEveryAllocation(prepared([&] {
                                            return handler.GetApplicationInfo(name, out);
                                        }),
                                        untouched),
              1);
    EXPECT_TRUE(answer);
}

} // namespace
} // namespace kestraboot
