#include "registry/own_application.h"

#include "tests/registry/handler.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct OwnApplication : testing::Test {
    RegistrySandbox sandbox;
    TempFolder folder;
    OpenHandler handler;
    appInfo_tag own;
};

TEST_F(OwnApplication, IsTheFirstWhoseProxyIsTheRunningProgram)
{
    RegisterSample(folder.Path(), L"A");
    const SampleApplication first = RegisterOwnSample(folder.Path(), L"B");
    RegisterOwnSample(folder.Path(), L"C");
    EXPECT_TRUE(FindOwnApplication(handler, own));
    EXPECT_EQ(own.KeyPath, first.keyPath);
    EXPECT_EQ(handler.Names(), (Names{L"A", L"B", L"C"})); // loaded by the call, and complete
    EXPECT_EQ(handler.applications[1].KeyPath, first.keyPath);
}

TEST_F(OwnApplication, IsFoundWithoutRegardToCase)
{
    const SampleApplication sample = RegisterOwnSample(folder.Path(), L"A");
    std::wstring upper = sample.proxyPath;
    std::ranges::transform(upper, upper.begin(), [](wchar_t c) {
        return static_cast<wchar_t>(std::towupper(c));
    });
    ASSERT_NE(upper, sample.proxyPath);
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"ProxyPath", upper);
    EXPECT_TRUE(FindOwnApplication(handler, own));
    EXPECT_EQ(own.ProxyPath, upper);
}

TEST_F(OwnApplication, IsNotFoundByAnotherNameOfTheSameFile)
{
    const SampleApplication sample = RegisterOwnSample(folder.Path(), L"A");
    const std::filesystem::path path = sample.proxyPath;
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"ProxyPath",
            (path.parent_path() / L"." / path.filename()).wstring());
    own.Name = L"before";
    EXPECT_FALSE(FindOwnApplication(handler, own));
    EXPECT_EQ(handler.Names(), Names{L"A"});
    EXPECT_EQ(own.Name, L"before");
}

TEST_F(OwnApplication, IsNoneWhenTheProcessCannotOpenItself)
{
    RegisterOwnSample(folder.Path(), L"A");
    const FAKE_IMPORT(OpenProcess) refused([](auto...) -> HANDLE {
        return nullptr;
    });
    EXPECT_FALSE(FindOwnApplication(handler, own));
    EXPECT_EQ(handler.Names(), Names{L"A"});
}

TEST_F(OwnApplication, IsNotSearchedForIfNoneIsLeft)
{
    const ProcessEndCatcher catcher;
    EXPECT_THROW(static_cast<void>(FindOwnApplication(handler, own)), ProcessEnded);
}

} // namespace
} // namespace kestraboot
