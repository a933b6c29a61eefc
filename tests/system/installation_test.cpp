// The safeguard that keeps the tests of the shipped programs off a machine on which somebody works.
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/system/installation.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

TEST(InstalledApplications, OnARealWindowsAreNotRemoved)
{
    ClearCorvaneRegistry();
    const Installation app(L"App");
    {
        const FAKE_IMPORT(GetProcAddress) withoutWine([](HMODULE, const char*) -> FARPROC {
            return nullptr;
        });
        EXPECT_THROW(ClearCorvaneRegistry(), std::runtime_error);
    }
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, app.KeyPath()));
}

} // namespace
} // namespace kestraboot::tests
