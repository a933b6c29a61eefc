// Makes wia_service.exe the WIA service of this prefix, before the first test.
#include "tests/system/imaging/own_wia_service.h"

#include "tests/system/imaging/host_process.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>

namespace kestraboot::tests
{
namespace
{

std::unique_ptr<StandInFolder> folder;

class OwnWiaService : public testing::Environment
{
public:
    void SetUp() override
    {
        if (folder) {
            return; // a repetition: the service runs and uses that folder
        }
        folder = std::make_unique<StandInFolder>();
        std::wstring command = L'"' + OwnFolder() + L"..\\wia_service.exe\" register";
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process = {};
        ASSERT_TRUE(::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                     nullptr, &startup, &process));
        ::WaitForSingleObject(process.hProcess, INFINITE);
        DWORD result = 1;
        ::GetExitCodeProcess(process.hProcess, &result);
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
        ASSERT_EQ(result, 0U);
    }
};

const testing::Environment* const ownWiaService =
    testing::AddGlobalTestEnvironment(new OwnWiaService); // GoogleTest owns it

} // namespace

const StandInFolder& WiaStandIns()
{
    return *folder;
}

} // namespace kestraboot::tests
