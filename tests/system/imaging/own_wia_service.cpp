// Makes wia_service.exe the WIA service of this prefix, before the first test.
#include "tests/system/imaging/own_wia_service.h"

#include "tests/support/program_folder.h"
#include "tests/system/child_process.h"

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
        ChildProcess service(ProgramFolder().parent_path() / L"wia_service.exe", L"register");
        ASSERT_EQ(service.ExitCode(), 0U);
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
