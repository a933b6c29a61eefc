#include "tests/launcher/fake_windows.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{

FakeWindows::FakeWindows(Version running, bool inConsoleSession)
    : version(running), console(inConsoleSession), question([this](OSVERSIONINFOW* record) {
          return Answer(record);
      }),
      session([this](DWORD processId, DWORD* sessionId) -> BOOL {
          EXPECT_EQ(processId, ::GetCurrentProcessId());
          *sessionId = ::WTSGetActiveConsoleSessionId() + (console ? 0 : 1);
          return TRUE;
      })
{
}

BOOL FakeWindows::Answer(OSVERSIONINFOW* record)
{
    const bool extended = record->dwOSVersionInfoSize == sizeof(OSVERSIONINFOEXW);
    EXPECT_TRUE(extended || record->dwOSVersionInfoSize == sizeof(OSVERSIONINFOW));
    if (version.failingForms > (extended ? 0 : 1)) {
        return FALSE;
    }
    record->dwMajorVersion = version.major;
    record->dwMinorVersion = version.minor;
    record->dwPlatformId = version.platform;
    if (extended) {
        reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = version.product;
    }
    return TRUE;
}

} // namespace kestraboot::tests
