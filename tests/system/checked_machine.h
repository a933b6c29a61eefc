#pragma once

#include "tests/system/installation.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A boot program with the account's limited privileges, as log-on starts it, or with its full ones, as
/// "Run as administrator" starts it. This object terminates it at the latest.
class StartedWith
{
public:
    StartedWith(TOKEN_ELEVATION_TYPE privileges, const std::filesystem::path& program);
    StartedWith(const StartedWith&) = delete;
    StartedWith& operator=(const StartedWith&) = delete;
    ~StartedWith();

    [[nodiscard]] DWORD Id() const noexcept { return information.dwProcessId; }

private:
    PROCESS_INFORMATION information = {};
};

/// A machine on which nothing is installed and kestractl sees Windows Vista.
class CheckedMachine : public testing::Test
{
protected:
    CheckedMachine();
    ~CheckedMachine() override;

    std::string Check(DWORD expectedExitCode, const std::wstring& arguments = {});

    /// Also checks that the registry is unchanged afterwards, and all files below `folders`.
    std::string CheckWithoutChange(DWORD expectedExitCode);
    nlohmann::json CheckJson(DWORD expectedExitCode);

    /// The rows of that check, as "verdict subject: reason".
    static std::vector<std::string> RowsOf(const nlohmann::json& json, const std::string& check);

    static void PutAutoRun(const std::filesystem::path& program);

    /// Creates the user's own preferences, as an installer does.
    static void PutUserPreferences(const Installation& application, std::uint32_t defaultFlag = 0);

    std::vector<std::filesystem::path> folders;
};

} // namespace kestraboot::tests
