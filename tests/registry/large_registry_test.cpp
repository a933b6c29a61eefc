#include "tests/registry/handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

TEST(LargeRegistry, Of2000ApplicationsIsLoadedWhole)
{
    const RegistrySandbox sandbox;
    const TempFolder folder;
    const std::wstring file = folder.AddFile("both.exe").wstring();
    constexpr int kApplications = 2000;
    for (int i = 0; i < kApplications; ++i) {
        const std::wstring key =
            L"SOFTWARE\\Corvane\\P" + std::to_wstring(10'000 + i) + L"\\Corvane Kestrafetch";
        PutText(HKEY_LOCAL_MACHINE, key, L"Name", std::to_wstring(i));
        PutText(HKEY_LOCAL_MACHINE, key, L"ProxyPath", file);
        PutText(HKEY_LOCAL_MACHINE, key, L"CmdLine", file);
    }
    OpenHandler handler;
    handler.LoadInformation();
    const int handles = OpenHandles();
    handler.LoadInformation();
    EXPECT_EQ(OpenHandles(), handles);
    ASSERT_EQ(handler.applications.size(), 2000U);
    for (int i = 0; i < kApplications; ++i) {
        ASSERT_EQ(handler.applications[static_cast<std::size_t>(i)].Name, std::to_wstring(i));
    }
}

TEST(LargeRegistry, Of60LevelsIsSearchedToTheBottom)
{
    const RegistrySandbox sandbox;
    const TempFolder folder;
    std::wstring product = L"Level1";
    for (int level = 2; level <= 60; ++level) {
        product += L"\\Level" + std::to_wstring(level);
        MakeKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\" + product); // a few levels at a time
    }
    const std::wstring key = L"SOFTWARE\\Corvane\\" + product + L"\\Corvane Kestrafetch";
    const std::wstring file = folder.AddFile("both.exe").wstring();
    PutText(HKEY_LOCAL_MACHINE, key, L"ProxyPath", file);
    PutText(HKEY_LOCAL_MACHINE, key, L"CmdLine", file);
    OpenHandler handler;
    handler.LoadInformation();
    ASSERT_EQ(handler.applications.size(), 1U);
    EXPECT_EQ(handler.applications[0].KeyPath, key);
}

} // namespace
} // namespace kestraboot
