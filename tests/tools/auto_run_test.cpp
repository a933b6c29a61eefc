#include "tools/ctl/auto_run.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

appInfo_tag Named(const wchar_t* name)
{
    appInfo_tag info;
    info.Name = name;
    info.ProxyPath = std::wstring(L"C:\\") + name + L"\\boot.exe";
    return info;
}

TEST(AutoRun, ReadsTheProgramWithoutTheQuotes)
{
    EXPECT_EQ(AutoRunProgram(L"\"C:\\a b\\boot.exe\""), L"C:\\a b\\boot.exe");
    EXPECT_EQ(AutoRunProgram(L"\"C:\\boot.exe\" -x"), L"C:\\boot.exe");
    EXPECT_EQ(AutoRunProgram(L"\"C:\\boot.exe"), L"C:\\boot.exe");
    EXPECT_EQ(AutoRunProgram(L"C:\\boot.exe"), L"C:\\boot.exe");
    EXPECT_EQ(AutoRunProgram(L""), L"");
}

TEST(AutoRun, BelongsToTheFirstApplicationWithThatProxy)
{
    std::vector<ListedApplication> applications(3);
    applications[0].info = Named(L"One");
    applications[1].info = applications[2].info = Named(L"Two");
    EXPECT_EQ(OwnerOfProxy(applications, L"c:\\TWO\\boot.exe"), &applications[1]);
    EXPECT_EQ(OwnerOfProxy(applications, L"C:\\Three\\boot.exe"), nullptr);
    EXPECT_EQ(OwnerOfProxy({}, L"C:\\One\\boot.exe"), nullptr);
}

void Expect(const std::optional<NextLaunch>& next, const wchar_t* application, const wchar_t* mode)
{
    ASSERT_TRUE(next);
    EXPECT_EQ(next->application, application);
    EXPECT_EQ(next->mode, mode);
}

TEST(AnArrival, StartsTheOnlyDefault)
{
    Expect(WhatAnArrivalStarts({Named(L"One"), Named(L"Two")}, {Named(L"Two")}, true), L"Two",
           L"direct");
}

TEST(AnArrival, StartsTheFirstInSelectModeWithoutASingleDefault)
{
    const std::vector<appInfo_tag> both = {Named(L"One"), Named(L"Two")};
    Expect(WhatAnArrivalStarts(both, {}, false), L"One", L"select");
    Expect(WhatAnArrivalStarts(both, both, false), L"One", L"select");
}

TEST(AnArrival, StartsTheOnlyApplicationUnlessTheOrganiserIsInstalled)
{
    Expect(WhatAnArrivalStarts({Named(L"One")}, {}, false), L"One", L"direct");
    Expect(WhatAnArrivalStarts({Named(L"One")}, {}, true), L"One", L"select");
}

TEST(AnArrival, StartsNothingWithoutApplications)
{
    EXPECT_FALSE(WhatAnArrivalStarts({}, {}, true));
}

} // namespace
} // namespace kestraboot::tools
