// When memory runs out in the launcher, no incomplete command line starts, and no handle stays open.
#include "kestraboot/command_handler.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/console_recorder.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cwchar>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

int starts = 0;
int lines = 0;
int linesThatNoneIsThere = 0;

std::intptr_t CountStart(int, const wchar_t*, const wchar_t*, ...)
{
    ++starts;
    return -1;
}

void CountLine(const wchar_t* line)
{
    ++lines;
    linesThatNoneIsThere += std::wcsstr(line, L"No Kestra") != nullptr ? 1 : 0;
}

struct LauncherOutOfMemory : testing::Test {
    LauncherOutOfMemory() : spawn("_wspawnlp", CountStart), output("OutputDebugStringW", CountLine)
    {
        RegisterSample(folder.Path(), L"Viewer");
        own = RegisterOwnSample(folder.Path(), L"Xray");
        MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    }
    /// Runs before each run.
    static void Begin() { starts = lines = linesThatNoneIsThere = 0; }

    RegistrySandbox sandbox;
    TempFolder folder;
    SampleApplication own;
    ImportPatch spawn;
    ImportPatch output;
    CKestraBootCommandHandler handler;
    std::wstring path = L"C:\\a folder with a long name\\viewer.exe";
    std::wstring mode = L"direct";
    std::wstring type = L"volume";
    std::wstring id = std::wstring(1000, L'i'); // a line that needs memory
};

TEST_F(LauncherOutOfMemory, StartsAndTracesNothing)
{
    EXPECT_GE(ForEveryAllocation(
                  [&] {
                      Begin();
                      handler.LaunchKestra(path, mode, type, id);
                  },
                  [](bool threw) {
                      EXPECT_TRUE(threw);
                      EXPECT_EQ(starts + lines, 0);
                  }),
              1);
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(lines, 1);
}

TEST_F(LauncherOutOfMemory, ThatCannotCopyTheListFindsNoApplication)
{
    int noneFound = 0;
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      Begin();
                      handler.LaunchDefaultKestra(type, id);
                  },
                  [&](bool threw) {
                      EXPECT_EQ(starts, 0);
                      EXPECT_EQ(lines, threw ? 0 : 1);
                      EXPECT_EQ(linesThatNoneIsThere, lines);
                      noneFound += linesThatNoneIsThere;
                  }),
              20);
    EXPECT_GT(noneFound, 0);
    EXPECT_EQ(starts, 1);
}

TEST_F(LauncherOutOfMemory, ThatCannotCopyTheListFindsNoOwnApplication)
{
    int noneFound = 0;
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      Begin();
                      handler.LaunchOwnKestra(mode, type, id);
                  },
                  [&](bool threw) {
                      EXPECT_EQ(starts, 0);
                      EXPECT_EQ(lines, threw ? 0 : 1);
                      noneFound += linesThatNoneIsThere;
                  }),
              20);
    EXPECT_GT(noneFound, 0);
    EXPECT_EQ(starts, 1);
}

TEST_F(LauncherOutOfMemory, NeverLeavesTwoDefaultsAfterATrueAnswer)
{
    std::wstring name = L"Xray";
    std::wstring value = L"yes";
    const std::wstring other = L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch\\Preferences";
    MakeKey(HKEY_CURRENT_USER, own.Preferences());
    bool answer = false;
    const ConsoleRecorder console; // an application that could not be copied counts as unknown
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      answer = false;
                      answer = handler.SetApplicationDefaultStatus(name, value);
                  },
                  [&](bool) {
                      if (answer) {
                          EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, other, L"DefaultFlag"), 0U);
                      }
                      PutDword(HKEY_CURRENT_USER, other, L"DefaultFlag", 1);
                  },
                  Shortage::Once),
              20);
    EXPECT_TRUE(answer);
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, other, L"DefaultFlag"), 0U);
}

} // namespace
} // namespace kestraboot
