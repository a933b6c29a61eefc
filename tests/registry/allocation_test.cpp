// When memory runs out in the registry of applications, the caller gets the exception, and no handle
// stays open.
#include "registry/own_application.h"
#include "registry/supported_formats.h"
#include "tests/registry/handler.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryOutOfMemory : testing::Test {
    RegistryOutOfMemory() : spawn("_wspawnlp", Refuse)
    {
        MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
        MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
        own = RegisterOwnSample(folder.Path(), L"Vellumry\\7.0");
        RegisterSample(folder.Path(), L"Viewer");
        PutText(HKEY_LOCAL_MACHINE, own.keyPath + L"\\File Formats", L"Image", L"jpg tif");
        PutText(HKEY_LOCAL_MACHINE, own.OwnKey(), L"locale", L"a rather long name of a locale");
        RegisterOrganiser(L"C:\\A folder with quite a long name");
    }
    static std::intptr_t Refuse(int, const wchar_t*, const wchar_t*, ...) { return -1; }
    static void Reaches(bool threw) { EXPECT_TRUE(threw); }

    RegistrySandbox sandbox;
    TempFolder folder;
    SampleApplication own;
    ImportPatch spawn;
    OpenHandler handler;
};

TEST_F(RegistryOutOfMemory, ReachesTheCallerOfLoading)
{
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      handler.LoadInformation();
                  },
                  Reaches),
              20);
    EXPECT_EQ(handler.applications.size(), 2U);
}

TEST_F(RegistryOutOfMemory, ReachesTheCallerOfMaintainingTheOrder)
{
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      handler.MaintainOrder();
                  },
                  Reaches),
              20);
}

TEST_F(RegistryOutOfMemory, ReachesTheCallerOfTheFormats)
{
    std::size_t found = 0;
    const auto read = [&] {
        std::vector<formatInfo_tag> formats;
        GetSupportedFormats(handler, formats);
        found = formats.size();
    };
    handler.LoadInformation();
    EXPECT_GT(ForEveryAllocation(read, Reaches, Shortage::Once), 15);
    EXPECT_EQ(found, 2U + 44U);
    // The formats of the default application never become those of all applications.
    PutDword(HKEY_CURRENT_USER, own.Preferences(), L"DefaultFlag", 1);
    handler.LoadInformation();
    EXPECT_GT(ForEveryAllocation(read, Reaches, Shortage::Once), 1);
    EXPECT_EQ(found, 2U);
}

TEST_F(RegistryOutOfMemory, ReachesTheCallersOfStatusAndLocale)
{
    // If the stored status forbids the launch, the answer is never "may launch". No locale is made up.
    PutDword(HKEY_CURRENT_USER, own.OwnKey(), L"kestralaunchstatus", 0);
    for (const Shortage shortage : {Shortage::Once, Shortage::FromThenOn}) {
        bool mayLaunch = true;
        EXPECT_GT(ForEveryAllocation(
                      [&] {
                          mayLaunch = handler.GetKestraLaunchStatus();
                      },
                      Reaches, shortage),
                  20);
        EXPECT_FALSE(mayLaunch);
        bool stored = false;
        EXPECT_GT(ForEveryAllocation(
                      [&] {
                          stored = handler.SetKestraLaunchStatus(0);
                      },
                      Reaches, shortage),
                  20);
        EXPECT_TRUE(stored);
        std::wstring locale;
        EXPECT_GT(ForEveryAllocation(
                      [&] {
                          static_cast<void>(handler.GetKestraLocaleString(locale));
                      },
                      [&](bool threw) {
                          EXPECT_TRUE(threw);
                          EXPECT_EQ(locale, L"en_us");
                      },
                      shortage),
                  20);
        EXPECT_EQ(locale, L"a rather long name of a locale");
    }
}

TEST_F(RegistryOutOfMemory, LeavesTheCallersRecordOfTheOwnApplicationUnchanged)
{
    appInfo_tag out;
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      out.Name = L"before";
                      EXPECT_TRUE(FindOwnApplication(handler, out));
                  },
                  [&](bool threw) {
                      EXPECT_TRUE(threw);
                      EXPECT_EQ(out.Name, L"before");
                  },
                  Shortage::Once),
              20);
    EXPECT_EQ(out.KeyPath, own.keyPath);
}

} // namespace
} // namespace kestraboot
