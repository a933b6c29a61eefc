// The drop folder plugin's settings in the registry, and its report on a value that it refuses.
#include "tests/samples/loaded_plugin.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kKey = L"SOFTWARE\\Corvane\\Drop Folder";
const std::wstring kBadDuration = L": not a number from 100 to 3600000. No folder is watched.>";

class DropFolderSettings : public testing::Test
{
protected:
    void Refuses(const std::wstring& line)
    {
        EXPECT_NE(plugin.source->RegisterCallback(&reports), mox::kSuccess);
        EXPECT_EQ(trace.Lines().size(), ++refused);
        EXPECT_EQ(trace.Lines().back(), L"<DropFolder><" + line);
        EXPECT_EQ(reports.references, 1U) << "the callback is kept";
    }

    /// Waits for the line with that report, which the watching thread writes.
    void Accepts(const std::wstring& watched)
    {
        ASSERT_EQ(plugin.source->RegisterCallback(&reports), mox::kSuccess);
        EXPECT_TRUE(trace.Await(L"<DropFolder><" + watched + L": being watched.>"));
        EXPECT_EQ(plugin.source->UnregisterCallback(&reports), mox::kSuccess);
        EXPECT_EQ(reports.references, 1U);
    }

    RegistrySandbox registry;
    TempFolder folder;
    const std::wstring path = folder.Path().wstring();
    KeptReports reports;
    LoadedPlugin plugin{L"drop_folder.mox"};
    TraceRecorder trace;
    std::size_t refused = 0;
};

TEST_F(DropFolderSettings, AreRefusedWithoutAFolder)
{
    Refuses(L"Folder: the value cannot be read. No folder is watched.>");
}

TEST_F(DropFolderSettings, AreRefusedWhereTheFolderIsNotText)
{
    PutDword(HKEY_CURRENT_USER, kKey, L"Folder", 7);
    Refuses(L"Folder: the value cannot be read. No folder is watched.>");
}

TEST_F(DropFolderSettings, AreRefusedWhereThePathIsTooLong)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", L"C:\\" + std::wstring(245, L'a'));
    Refuses(L"Folder: the value cannot be read. No folder is watched.>");
}

TEST_F(DropFolderSettings, AreRefusedWithoutAFullPath)
{
    for (const std::wstring wrong : {L"", L"Drop", L"\\Drop", L"C:", L"C:\\", L"C:Drop", L"\\\\server",
                                     L"\\\\server\\", L"C:\\a\"b", L"C:\\*"}) {
        PutText(HKEY_CURRENT_USER, kKey, L"Folder", wrong);
        Refuses(wrong + L": not the full path of a folder. No folder is watched.>");
    }
}

TEST_F(DropFolderSettings, AreRefusedWhereThePathIsAFile)
{
    const std::wstring file = folder.AddFile(L"Drop", "a file").wstring();
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", file);
    Refuses(file + L": a file, not a folder. No folder is watched.>");
}

TEST_F(DropFolderSettings, AreRefusedWithADurationOutOfRange)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", path);
    for (const std::wstring value : {L"SettleMilliseconds", L"RetryMilliseconds"}) {
        for (const DWORD wrong : {0UL, 99UL, 3'600'001UL, 0xFFFF'FFFFUL}) {
            PutDword(HKEY_CURRENT_USER, kKey, value.c_str(), wrong);
            Refuses(value + kBadDuration);
        }
        PutDword(HKEY_CURRENT_USER, kKey, value.c_str(), 3'600'000);
    }
}

TEST_F(DropFolderSettings, AreRefusedWhereADurationIsText)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", path);
    PutText(HKEY_CURRENT_USER, kKey, L"SettleMilliseconds", L"2000");
    Refuses(L"SettleMilliseconds" + kBadDuration);
}

TEST_F(DropFolderSettings, MayHaveNoDurations)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", path);
    Accepts(path);
}

TEST_F(DropFolderSettings, MayHaveABackslashAtTheEndOfThePath)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Folder", path + L"\\");
    Accepts(path);
}

TEST_F(DropFolderSettings, MayNameAVariable)
{
    ::SetEnvironmentVariableW(L"KESTRABOOT_TEST_DROP", path.c_str());
    constexpr wchar_t kText[] = L"%KESTRABOOT_TEST_DROP%\\Below";
    folder.AddFolder(L"Below");
    PutBytes(HKEY_CURRENT_USER, kKey, L"Folder", REG_EXPAND_SZ, kText, sizeof kText);
    Accepts(path + L"\\Below");
    ::SetEnvironmentVariableW(L"KESTRABOOT_TEST_DROP", nullptr);
}

TEST_F(DropFolderSettings, MayLackTheTerminatingZero)
{
    PutBytes(HKEY_CURRENT_USER, kKey, L"Folder", REG_SZ, path.data(), path.size() * sizeof path[0]);
    Accepts(path);
}

} // namespace
} // namespace kestraboot::tests
