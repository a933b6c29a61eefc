#include "tests/system/checked_machine.h"

#include "tests/support/registry_sandbox.h"
#include "tests/support/source_file.h"
#include "tests/system/child_process.h"
#include "tests/system/registry_dump.h"
#include "tests/tools/json_schema.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kView32 = L"SOFTWARE\\Wow6432Node\\Corvane";
constexpr const wchar_t* kRun = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

/// Everything that shows of the files below the folders.
std::vector<std::string> FileDump(const std::vector<std::filesystem::path>& folders)
{
    std::vector<std::string> lines;
    for (const std::filesystem::path& folder : folders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string line = entry.path().string() + " " +
                               std::to_string(entry.last_write_time().time_since_epoch().count());
            if (entry.is_regular_file()) {
                std::ifstream in(entry.path(), std::ios::binary);
                const std::string bytes(std::istreambuf_iterator<char>(in), {});
                line += " " + std::to_string(std::hash<std::string>()(bytes));
            }
            lines.push_back(line);
        }
    }
    return lines;
}

TOKEN_ELEVATION_TYPE ElevationOf(HANDLE token)
{
    TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
    DWORD size = 0;
    ::GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size);
    return type;
}

} // namespace

StartedWith::StartedWith(TOKEN_ELEVATION_TYPE privileges, const std::filesystem::path& program)
{
    HANDLE own = nullptr;
    TOKEN_LINKED_TOKEN linked = {};
    HANDLE primary = nullptr;
    DWORD size = 0;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    std::wstring line = L"\"" + program.wstring() + L"\"";
    // Wine 8 starts programs with the full privileges, Wine 10 with the limited ones, as a log-on does.
    const bool started =
        ::OpenProcessToken(::GetCurrentProcess(), TOKEN_ALL_ACCESS, &own) &&
        ::GetTokenInformation(own, TokenLinkedToken, &linked, sizeof linked, &size) &&
        ::DuplicateTokenEx(ElevationOf(own) == privileges ? own : linked.LinkedToken, MAXIMUM_ALLOWED,
                           nullptr, SecurityImpersonation, TokenPrimary, &primary) &&
        ElevationOf(primary) == privileges &&
        ::CreateProcessAsUserW(primary, program.c_str(), line.data(), nullptr, nullptr, FALSE, 0,
                               nullptr, program.parent_path().c_str(), &startup, &information);
    const DWORD error = ::GetLastError();
    for (const HANDLE handle : {own, linked.LinkedToken, primary}) {
        ::CloseHandle(handle);
    }
    if (!started) {
        throw std::runtime_error("cannot start " + program.string() + " with privileges of type " +
                                 std::to_string(privileges) + ": error " + std::to_string(error));
    }
    ::CloseHandle(information.hThread);
}

StartedWith::~StartedWith()
{
    ::TerminateProcess(information.hProcess, 0xDEAD);
    ::WaitForSingleObject(information.hProcess, 30'000);
    ::CloseHandle(information.hProcess);
}

CheckedMachine::CheckedMachine()
{
    ClearCorvaneRegistry();
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kView32);
    PutText(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\kestractl.exe", L"Version", L"vista");
}

CheckedMachine::~CheckedMachine()
{
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kView32);
}

std::string CheckedMachine::Check(DWORD expectedExitCode, const std::wstring& arguments)
{
    ChildProcess tool(BuiltPrograms() / "kestractl.exe",
                      L"--check" + (arguments.empty() ? L"" : L" " + arguments));
    EXPECT_EQ(tool.ExitCode(), expectedExitCode);
    return tool.Output();
}

std::string CheckedMachine::CheckWithoutChange(DWORD expectedExitCode)
{
    const std::vector<std::string> registry = RegistryDump();
    const std::vector<std::string> files = FileDump(folders);
    EXPECT_FALSE(files.empty());
    const std::string text = Check(expectedExitCode);
    EXPECT_EQ(RegistryDump(), registry);
    EXPECT_EQ(FileDump(folders), files);
    return text;
}

nlohmann::json CheckedMachine::CheckJson(DWORD expectedExitCode)
{
    const nlohmann::json json = nlohmann::json::parse(Check(expectedExitCode, L"--json"));
    static const nlohmann::json schema = ReadSchema(SourceFile("docs/kestractl.schema.json"));
    EXPECT_EQ(AgainstSchema(schema, json), "");
    return json;
}

std::vector<std::string> CheckedMachine::RowsOf(const nlohmann::json& json, const std::string& check)
{
    std::vector<std::string> rows;
    for (const nlohmann::json& row : json.at("rows")) {
        if (row.at("check") == check) {
            const std::string subject = row.at("subject").is_null() ? "" : row.at("subject");
            rows.push_back(row.at("verdict").get<std::string>() + " " + subject + ": " +
                           row.at("reason").get<std::string>());
        }
    }
    return rows;
}

void CheckedMachine::PutAutoRun(const std::filesystem::path& program)
{
    PutText(HKEY_LOCAL_MACHINE, kRun, L"Corvane Kestrafetch", L"\"" + program.wstring() + L"\"");
}

void CheckedMachine::PutUserPreferences(const Installation& application, std::uint32_t defaultFlag)
{
    PutDword(HKEY_CURRENT_USER, application.KeyPath() + L"\\Preferences", L"DefaultFlag", defaultFlag);
}

} // namespace kestraboot::tests
