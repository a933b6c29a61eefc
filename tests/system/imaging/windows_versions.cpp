// The Windows version that each copy of the host sees, set before the first test.
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

class HostVersions : public testing::Environment
{
public:
    void SetUp() override
    {
        const struct {
            const wchar_t* program;
            const wchar_t* version; ///< Wine's name of it
        } hosts[] = {{L"imaging_host_5_1.exe", L"winxp"},          {L"imaging_host_5_0.exe", L"win2k"},
                     {L"imaging_host_6_0.exe", L"vista"},          {L"imaging_host_5_2.exe", L"win2003"},
                     {L"imaging_host_6_0_server.exe", L"win2008"}, {L"imaging_host_6_1.exe", L"win7"}};
        for (const auto& host : hosts) {
            PutText(HKEY_CURRENT_USER, std::wstring(L"Software\\Wine\\AppDefaults\\") + host.program,
                    L"Version", host.version);
        }
    }
};

const testing::Environment* const hostVersions =
    testing::AddGlobalTestEnvironment(new HostVersions); // GoogleTest owns it

} // namespace
} // namespace kestraboot::tests
