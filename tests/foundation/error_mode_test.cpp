#include "foundation/error_mode.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

TEST(ErrorMode, IsInForceWithinTheScopeAndRestoredBehindIt)
{
    const UINT outside = ::SetErrorMode(SEM_NOOPENFILEERRORBOX);
    {
        const ErrorModeScope outer(SEM_FAILCRITICALERRORS);
        EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_FAILCRITICALERRORS));
        {
            const ErrorModeScope inner(SEM_NOGPFAULTERRORBOX);
            EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
        }
        EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_FAILCRITICALERRORS));
    }
    EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOOPENFILEERRORBOX));
    ::SetErrorMode(outside);
}

} // namespace
} // namespace kestraboot
