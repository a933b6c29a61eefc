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

/// A boot program with the rights of the account alone, as log-on starts it. Ended with this object.
class LimitedProcess
{
public:
    explicit LimitedProcess(const std::filesystem::path& program);
    LimitedProcess(const LimitedProcess&) = delete;
    LimitedProcess& operator=(const LimitedProcess&) = delete;
    ~LimitedProcess();

    [[nodiscard]] DWORD Id() const noexcept { return information.dwProcessId; }

private:
    PROCESS_INFORMATION information = {};
};

/// A machine whose kestractl is told Windows Vista, and on which nothing is installed.
class CheckedMachine : public testing::Test
{
protected:
    CheckedMachine();
    ~CheckedMachine() override;

    std::string Check(DWORD expectedExitCode, const std::wstring& arguments = {});

    /// Checks too that the registry is the same afterwards, and all files below `folders`.
    std::string CheckWithoutChange(DWORD expectedExitCode);
    nlohmann::json CheckJson(DWORD expectedExitCode);

    /// The rows of that check, as "verdict subject: reason".
    static std::vector<std::string> RowsOf(const nlohmann::json& json, const std::string& check);

    static void PutAutoRun(const std::filesystem::path& program);

    /// Makes the user's own preferences, as an installer does.
    static void PutUserPreferences(const Installation& application, std::uint32_t defaultFlag = 0);

    std::vector<std::filesystem::path> folders;
};

} // namespace kestraboot::tests
