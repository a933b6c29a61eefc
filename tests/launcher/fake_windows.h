#pragma once

#include "tests/support/import_patch.h"

#include <ostream>

namespace kestraboot::tests
{

/// The version of Windows on which the product runs, and its session.
class FakeWindows
{
public:
    struct Version {
        DWORD major;
        DWORD minor;
        BYTE product = VER_NT_WORKSTATION;
        DWORD platform = VER_PLATFORM_WIN32_NT;
        int failingForms = 0; ///< 1: the extended query fails; 2: the plain query fails too

        friend void PrintTo(const Version& shown, std::ostream* out)
        {
            *out << shown.major << '.' << shown.minor << " product " << int{shown.product}
                 << " platform " << shown.platform << ", failing queries " << shown.failingForms;
        }
    };

    explicit FakeWindows(Version running, bool inConsoleSession);

private:
    BOOL Answer(OSVERSIONINFOW* record);

    Version version;
    bool console;
    FAKE_IMPORT(GetVersionExW) question;
    FAKE_IMPORT(ProcessIdToSessionId) session;
};

inline constexpr FakeWindows::Version kWindows2000 = {5, 0};
inline constexpr FakeWindows::Version kWindowsXp = {5, 1};
inline constexpr FakeWindows::Version kWindowsVista = {6, 0};
inline constexpr FakeWindows::Version kWindows7 = {6, 1};

} // namespace kestraboot::tests
