#include "registry/application_record.h"

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

const std::wstring kKey = L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch";

struct ApplicationRecord : testing::Test {
    appInfo_tag Read()
    {
        appInfo_tag record;
        ReadApplicationRecord(kKey, record);
        return record;
    }
    std::vector<std::wstring> ReadFormats()
    {
        std::vector<std::wstring> formats;
        for (const formatInfo_tag& format : Read().FileFormats) {
            formats.push_back(format.MediaType + L':' + format.Extension);
        }
        return formats;
    }
    RegistrySandbox sandbox;
    TraceRecorder trace;
};

using Formats = std::vector<std::wstring>;

TEST_F(ApplicationRecord, IsEmptyAndZeroWhenFresh)
{
    const appInfo_tag record;
    EXPECT_EQ(record.Name + record.ProxyPath + record.Desc + record.CmdLine + record.Icon +
                  record.KeyPath,
              L"");
    EXPECT_EQ(record.DefaultFlag, 0U);
    EXPECT_EQ(record.SpareFlag, 0U);
    EXPECT_TRUE(record.FileFormats.empty());
}

TEST_F(ApplicationRecord, IsCopiedWithEveryMember)
{
    const appInfo_tag record = {L"n", L"p", L"d", L"c", L"i", L"k", 1, 2, {{L"jpg", L"Image"}}};
    appInfo_tag copy;
    copy = record;
    EXPECT_EQ(copy.Name, L"n");
    EXPECT_EQ(copy.ProxyPath, L"p");
    EXPECT_EQ(copy.Desc, L"d");
    EXPECT_EQ(copy.CmdLine, L"c");
    EXPECT_EQ(copy.Icon, L"i");
    EXPECT_EQ(copy.KeyPath, L"k");
    EXPECT_EQ(copy.DefaultFlag, 1U);
    EXPECT_EQ(copy.SpareFlag, 2U);
    ASSERT_EQ(copy.FileFormats.size(), 1U);
    EXPECT_EQ(copy.FileFormats[0].Extension, L"jpg");
    EXPECT_EQ(copy.FileFormats[0].MediaType, L"Image");
}

TEST_F(ApplicationRecord, HoldsTheTextsOfTheKey)
{
    PutText(HKEY_LOCAL_MACHINE, kKey, L"Name", L"Viewer 1.0");
    PutText(HKEY_LOCAL_MACHINE, kKey, L"ProxyPath", L"C:\\p.exe");
    PutText(HKEY_LOCAL_MACHINE, kKey, L"Desc", L"Views");
    PutText(HKEY_LOCAL_MACHINE, kKey, L"CmdLine", L"C:\\c.exe");
    PutText(HKEY_LOCAL_MACHINE, kKey, L"Icon", L"C:\\c.exe,2");
    const appInfo_tag record = Read();
    EXPECT_EQ(record.Name, L"Viewer 1.0");
    EXPECT_EQ(record.ProxyPath, L"C:\\p.exe");
    EXPECT_EQ(record.Desc, L"Views");
    EXPECT_EQ(record.CmdLine, L"C:\\c.exe");
    EXPECT_EQ(record.Icon, L"C:\\c.exe,2");
    EXPECT_EQ(record.KeyPath, kKey);
    EXPECT_EQ(record.SpareFlag, 0U);
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(ApplicationRecord, HasEmptyMembersForMissingValues)
{
    MakeKey(HKEY_LOCAL_MACHINE, kKey);
    const appInfo_tag record = Read();
    EXPECT_EQ(record.Name + record.ProxyPath + record.Desc + record.CmdLine + record.Icon, L"");
    EXPECT_EQ(record.KeyPath, kKey);
    EXPECT_TRUE(record.FileFormats.empty());
}

TEST_F(ApplicationRecord, OfAKeyThatCannotBeOpenedHasNoPath)
{
    PutText(HKEY_CURRENT_USER, kKey, L"Name", L"only for the user");
    appInfo_tag record;
    record.Name = L"before";
    ReadApplicationRecord(kKey, record);
    EXPECT_EQ(record.Name, L"before");
    EXPECT_EQ(record.KeyPath, L"");
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(ApplicationRecord, WhoseOwnKeyIsLockedStillHasFormatsAndFlag)
{
    PutText(HKEY_LOCAL_MACHINE, kKey, L"Name", L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L"jpg");
    PutDword(HKEY_CURRENT_USER, kKey + L"\\Preferences", L"DefaultFlag", 1);
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            return path == kKey ? ERROR_ACCESS_DENIED
                                : open.CallOriginal(root, path, options, access, key);
        });
    const appInfo_tag record = Read();
    EXPECT_EQ(record.Name, L"");
    EXPECT_EQ(record.KeyPath, L"");
    EXPECT_EQ(record.FileFormats.size(), 1U);
    EXPECT_EQ(record.DefaultFlag, 1U);
}

TEST_F(ApplicationRecord, ListsImageThenAudioThenVideo)
{
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Video", L"avi");
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Audio", L"mp3 wav");
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L"JPG");
    EXPECT_EQ(ReadFormats(), (Formats{L"Image:JPG", L"Audio:mp3", L"Audio:wav", L"Video:avi"}));
}

TEST_F(ApplicationRecord, SkipsEmptyPiecesOfAFormatList)
{
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L" jpg  tif ");
    EXPECT_EQ(ReadFormats(), (Formats{L"Image:jpg", L"Image:tif"}));
}

TEST_F(ApplicationRecord, KeepsDuplicatesAndEqualExtensionsOfTwoKinds)
{
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L"jpg jpg .Jpg;");
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Video", L"jpg");
    EXPECT_EQ(ReadFormats(), (Formats{L"Image:jpg", L"Image:jpg", L"Image:.Jpg;", L"Video:jpg"}));
}

TEST_F(ApplicationRecord, ReplacesItsFormats)
{
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L"jpg");
    appInfo_tag record;
    record.FileFormats = {{L"old", L"Audio"}};
    ReadApplicationRecord(kKey, record);
    ASSERT_EQ(record.FileFormats.size(), 1U);
    EXPECT_EQ(record.FileFormats[0].Extension, L"jpg");
}

TEST_F(ApplicationRecord, ReadsNoFormatsFromTheUsersKey)
{
    MakeKey(HKEY_LOCAL_MACHINE, kKey);
    PutText(HKEY_CURRENT_USER, kKey + L"\\File Formats", L"Image", L"jpg");
    EXPECT_EQ(ReadFormats(), Formats{});
}

TEST_F(ApplicationRecord, IsReadWithReadAccessAlone)
{
    PutText(HKEY_LOCAL_MACHINE, kKey + L"\\File Formats", L"Image", L"jpg");
    PutDword(HKEY_CURRENT_USER, kKey + L"\\Preferences", L"DefaultFlag", 0);
    std::vector<std::wstring> opened;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_EQ(access, 0x20019U) << path;
            opened.push_back((root == HKEY_CURRENT_USER ? L"user " : L"") +
                             std::wstring(path).substr(kKey.size()));
            return open.CallOriginal(root, path, options, access, key);
        });
    Read();
    // The reader opens the key of the formats again for each of its values.
    EXPECT_EQ(opened, (std::vector<std::wstring>{L"", L"\\File Formats", L"\\File Formats",
                                                 L"\\File Formats", L"user \\Preferences"}));
}

TEST_F(ApplicationRecord, HasItsAutoLaunchValueReadWithReadAccessAlone)
{
    MakeKey(HKEY_CURRENT_USER, kKey + L"\\Preferences");
    MakeKey(HKEY_LOCAL_MACHINE, kKey + L"\\Preferences");
    std::vector<std::pair<HKEY, REGSAM>> opened;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            opened.emplace_back(root, access);
            return open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_TRUE(IsAutoLaunchAllowed(kKey));
    EXPECT_EQ(opened, (std::vector<std::pair<HKEY, REGSAM>>{{HKEY_CURRENT_USER, 0x20019},
                                                            {HKEY_LOCAL_MACHINE, 0x20019}}));
}

} // namespace
} // namespace kestraboot
