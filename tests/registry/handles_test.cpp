// The operations on a loaded registry leave no handle open.
#include "registry/supported_formats.h"
#include "tests/registry/handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct RegistryHandles : testing::Test {
    RegistrySandbox sandbox;
    TempFolder folder;
    SpawnRecorder spawns;
    OpenHandler handler;
};

TEST_F(RegistryHandles, AreClosedAfterLoading)
{
    MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    const SampleApplication first = RegisterSample(folder.Path(), L"Viewer");
    RegisterSample(folder.Path(), L"B\\1.0\\x");
    EXPECT_EQ(HandlesLeftBy([&] {
                  handler.LoadInformation();
                  // so that each run makes the user's key again
                  RemoveKey(HKEY_CURRENT_USER, first.keyPath);
              }),
              0);
}

TEST_F(RegistryHandles, AreClosedAfterMaintainingTheOrder)
{
    MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    RegisterOwnSample(folder.Path(), L"A");
    EXPECT_EQ(HandlesLeftBy([&] {
                  handler.MaintainOrder();
              }),
              0);
}

TEST_F(RegistryHandles, AreClosedBeforeTheProcessEnds)
{
    const ProcessEndCatcher catcher;
    MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_EQ(HandlesLeftBy([&] {
                  EXPECT_THROW(handler.MaintainOrder(), ProcessEnded);
              }),
              0);
}

TEST_F(RegistryHandles, AreClosedAfterAskingForTheFormats)
{
    RegisterOrganiser(L"C:\\Legacy");
    std::vector<formatInfo_tag> formats;
    EXPECT_EQ(HandlesLeftBy([&] {
                  GetSupportedFormats(handler, formats);
              }),
              0);
}

} // namespace
} // namespace kestraboot
