#include "legacy/organiser.h"

#include "foundation/organiser_constants.h"
#include "foundation/text.h"
#include "kestraboot/information_handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kAutoPlayKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers\\Handlers\\"
    L"CorvaneVellumryShowPicturesOnArrival";

struct Organiser : testing::Test {
    RegistrySandbox sandbox;
    appInfo_tag record;
};

TEST_F(Organiser, IsDescribedFromItsFolder)
{
    RegisterOrganiser(L"C:\\No such folder");
    PutText(HKEY_LOCAL_MACHINE, kAutoPlayKey, L"Action", L"Show pictures");
    ASSERT_TRUE(ReadOrganiserInfo(record)); // although none of its files exists
    EXPECT_EQ(record.Name, L"Corvane Vellumry 3.0");
    EXPECT_EQ(record.ProxyPath, L"C:\\No such folder\\VellumryDeviceConnect.exe");
    EXPECT_EQ(record.Desc, L"Show pictures");
    EXPECT_EQ(record.CmdLine, L"C:\\No such folder\\VelProxy.exe");
    EXPECT_EQ(record.Icon, L"C:\\No such folder\\VellumryOrganizer.exe, 111");
    EXPECT_EQ(record.KeyPath, L"");
    EXPECT_EQ(record.DefaultFlag, 0U);
}

TEST_F(Organiser, IsTheAnswerOfTheHandler)
{
    CKestraBootInformationHandler handler;
    EXPECT_FALSE(handler.GetVel3Info(record));
    RegisterOrganiser(L"C:\\Legacy");
    EXPECT_TRUE(handler.GetVel3Info(record));
    EXPECT_EQ(record.CmdLine, L"C:\\Legacy\\VelProxy.exe");
}

TEST_F(Organiser, HandlesImagesThenAudioThenVideo)
{
    RegisterOrganiser(L"C:\\Legacy");
    ASSERT_TRUE(ReadOrganiserInfo(record));
    std::vector<std::wstring> expected;
    for (const auto& [extensions, kind] : {std::pair{kOrganiserImageExtensions, L" Image"},
                                           std::pair{kOrganiserAudioExtensions, L" Audio"},
                                           std::pair{kOrganiserVideoExtensions, L" Video"}}) {
        std::wistringstream words{std::wstring(extensions)};
        for (std::wstring extension; words >> extension;) {
            expected.push_back(extension + kind);
        }
    }
    std::vector<std::wstring> read;
    for (const formatInfo_tag& format : record.FileFormats) {
        read.push_back(format.Extension + L' ' + format.MediaType);
    }
    EXPECT_EQ(read.size(), 47U);
    EXPECT_EQ(read, expected);
}

TEST_F(Organiser, ThatIsNotInstalledLeavesTheRecordUnchanged)
{
    PutText(HKEY_LOCAL_MACHINE, kAutoPlayKey, L"Action", L"Show pictures");
    record.Name = L"before";
    record.FileFormats = {{L"jpg", L"Image"}};
    EXPECT_FALSE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.Name, L"before");
    EXPECT_EQ(record.ProxyPath, L"");
    EXPECT_EQ(record.FileFormats.size(), 1U);
}

TEST_F(Organiser, WithoutItsDefaultValueIsNotInstalled)
{
    PutText(HKEY_LOCAL_MACHINE, kOrganiserKey, L"Other", L"C:\\Legacy");
    record.Name = L"before";
    EXPECT_FALSE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.Name, L"before");
}

TEST_F(Organiser, OfAnotherVersionOrUserIsNotInstalled)
{
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Vellumry\\4.0\\Organizer\\ApplicationPath", nullptr,
            L"C:\\Legacy");
    PutText(HKEY_CURRENT_USER, kOrganiserKey, nullptr, L"C:\\Legacy");
    EXPECT_FALSE(ReadOrganiserInfo(record));
}

TEST_F(Organiser, HasTheSharedDescriptionWithoutAnAction)
{
    RegisterOrganiser(L"C:\\Legacy");
    ASSERT_TRUE(ReadOrganiserInfo(record)); // no key
    EXPECT_EQ(record.Desc, L"Organize and edit pictures using");

    MakeKey(HKEY_LOCAL_MACHINE, kAutoPlayKey); // no value
    record.Desc.clear();
    ASSERT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.Desc, L"Organize and edit pictures using");

    PutText(HKEY_LOCAL_MACHINE, kAutoPlayKey, L"Action", L""); // an empty value
    record.Desc.clear();
    ASSERT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.Desc, L"Organize and edit pictures using");
}

TEST_F(Organiser, InAFolderThatEndsInABackslashGetsPathsWithADoubledOne)
{
    RegisterOrganiser(L"C:\\Legacy\\");
    ASSERT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.ProxyPath, L"C:\\Legacy\\\\VellumryDeviceConnect.exe");
    EXPECT_EQ(record.CmdLine, L"C:\\Legacy\\\\VelProxy.exe");
    EXPECT_EQ(record.Icon, L"C:\\Legacy\\\\VellumryOrganizer.exe, 111");
}

TEST_F(Organiser, InAnEmptyFolderIsStillInstalled)
{
    RegisterOrganiser(L"");
    ASSERT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.CmdLine, L"\\VelProxy.exe");
}

TEST_F(Organiser, IsTheSameInTwoCallsOnOneRecord)
{
    RegisterOrganiser(L"C:\\Legacy");
    record.KeyPath = L"kept";
    record.DefaultFlag = 5;
    record.SpareFlag = 6;
    ASSERT_TRUE(ReadOrganiserInfo(record));
    ASSERT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(record.FileFormats.size(), 47U); // replaced, not appended
    EXPECT_EQ(record.KeyPath, L"kept");
    EXPECT_EQ(record.DefaultFlag, 5U);
    EXPECT_EQ(record.SpareFlag, 6U);
}

TEST_F(Organiser, IsReadWithReadAccessAndWithoutATraceLine)
{
    const TraceRecorder trace;
    RegisterOrganiser(L"C:\\Legacy");
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
            EXPECT_EQ(access, 0x20019U);
            return open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_TRUE(ReadOrganiserInfo(record));
    EXPECT_EQ(open.Calls(), 2);
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(Organiser, LeavesNoKeyOpen)
{
    EXPECT_EQ(HandlesLeftBy([&] {
                  static_cast<void>(ReadOrganiserInfo(record));
              }),
              0);
    RegisterOrganiser(L"C:\\Legacy");
    PutText(HKEY_LOCAL_MACHINE, kAutoPlayKey, L"Action", L"Show pictures");
    EXPECT_EQ(HandlesLeftBy([&] {
                  static_cast<void>(ReadOrganiserInfo(record));
              }),
              0);
}

} // namespace
} // namespace kestraboot
