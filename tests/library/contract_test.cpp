// The exported headers' statements about an operation's effects, compared with the effects: whether it
// can end the process, and whether it leaves the registry alone.
#include "kestraboot/kestraboot.h"
#include "tests/support/compatible_application.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/source_file.h"
#include "tests/support/spawn_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>

namespace kestraboot::tests
{
namespace
{

using Operation = std::function<void(CKestraBootCommandHandler&)>;

std::wstring word = L"direct";
std::wstring kind = L"volume";
std::wstring drive = L"E:";
std::wstring program = L"C:\\program.exe";
std::vector<appInfo_tag> records;
appInfo_tag record;

#define OPERATION(name, ...)                                                                            \
    {                                                                                                   \
#name, [](CKestraBootCommandHandler & handler) {                                                \
            static_cast<void>(handler.name(__VA_ARGS__));                                               \
        }                                                                                               \
    }
// Every operation that reads or may end something. Left out: Uninstall, which does nothing without
// another instance, and TakeControl and ParseCommandLineParameter, which affect neither.
const std::map<std::string, Operation> kOperations = {
    OPERATION(GetAllApplicationInfo, records),
    OPERATION(GetApplicationInfo, word, record),
    OPERATION(GetDefaultApplicationInfo, records),
    OPERATION(GetKestraLaunchStatus),
    OPERATION(GetKestraLocaleString, word),
    OPERATION(GetVel3Info, record),
    OPERATION(LaunchDefaultKestra, kind, drive),
    OPERATION(LaunchKestra, program, word, kind, drive),
    OPERATION(LaunchOwnKestra, word, kind, drive),
    OPERATION(LaunchVel3Proxy, program, kind, drive),
    OPERATION(LoadInformation),
    OPERATION(MaintainOrder),
    OPERATION(SetApplicationDefaultStatus, word, word),
    OPERATION(SetKestraLaunchStatus, 1),
    OPERATION(StartVel3AutoLaunch),
    OPERATION(StopVel3AutoLaunch),
};
#undef OPERATION

std::string ReadHeader(const char* name)
{
    std::ifstream file(SourceFile("include/kestraboot") / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The comment above an operation, as one line.
std::string CommentOf(const std::string& operation)
{
    for (const char* const header : {"information_handler.h", "command_handler.h"}) {
        const std::string text = ReadHeader(header);
        const std::regex declaration("((?: *///[^\n]*\n)+)[^/;]*\\b" + operation + "\\(");
        std::smatch found;
        if (std::regex_search(text, found, declaration)) {
            return std::regex_replace(found[1].str(), std::regex("\\s*///\\s*"), " ");
        }
    }
    return "";
}

class Contract : public testing::TestWithParam<std::pair<const std::string, Operation>>
{
protected:
    Contract() { SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll")); }

    const std::string comment = CommentOf(GetParam().first);
    RegistrySandbox registry; // no compatible application
};

TEST_P(Contract, SaysWhetherItCanEndTheProcess)
{
    ASSERT_NE(comment, "");
    const ProcessEndCatcher end;
    const SpawnRecorder starts;
    CKestraBootCommandHandler handler;
    bool ended = false;
    try {
        GetParam().second(handler);
    } catch (const ProcessEnded&) {
        ended = true;
    }
    const bool said = std::regex_search(comment, std::regex("end the process|Ends the process"));
    EXPECT_EQ(said, ended) << comment;

    const std::string overview = ReadHeader("information_handler.h");
    const std::size_t list = overview.find("**Operations that end the process.**");
    const std::string listed = overview.substr(list, overview.find("class CKestra") - list);
    EXPECT_EQ(listed.find(GetParam().first + "()") != std::string::npos, ended) << listed;
}

TEST_P(Contract, SaysWhetherItLeavesTheRegistryAlone)
{
    const ProcessEndCatcher end;
    const SpawnRecorder starts;
    const FAKE_IMPORT(RegOpenKeyExW) opening([](HKEY, const wchar_t*, DWORD, REGSAM, HKEY*) -> LONG {
        return ERROR_FILE_NOT_FOUND;
    });
    CKestraBootCommandHandler handler;
    try {
        GetParam().second(handler);
    } catch (const ProcessEnded&) {
    }
    const bool said = std::regex_search(
        comment, std::regex("Reads neither the registry nor the disk|Does not access the registry"));
    EXPECT_EQ(said, opening.Calls() == 0) << comment;
}

INSTANTIATE_TEST_SUITE_P(OfEachOperation, Contract, testing::ValuesIn(kOperations),
                         [](const auto& tested) {
                             return tested.param.first;
                         });

} // namespace
} // namespace kestraboot::tests
