#include "tests/system/registry_dump.h"

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

TEST(ARegistryDump, ThatCannotBeReadIsNoDump)
{
    EXPECT_FALSE(RegistryDump().empty());
    const FAKE_IMPORT(RegOpenKeyExW) open([](auto...) -> LONG {
        return ERROR_ACCESS_DENIED;
    });
    EXPECT_THROW(static_cast<void>(RegistryDump()), std::runtime_error);
}

TEST(ARegistryDump, OfEmptyKeysIsNoDump)
{
    const FAKE_IMPORT(RegEnumKeyExW) keys([](auto...) -> LONG {
        return ERROR_KEY_DELETED;
    });
    const FAKE_IMPORT(RegEnumValueW) values([](auto...) -> LONG {
        return ERROR_KEY_DELETED;
    });
    EXPECT_THROW(static_cast<void>(RegistryDump()), std::runtime_error);
}

} // namespace
} // namespace kestraboot::tests
