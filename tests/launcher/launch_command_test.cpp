// The command line of a started application, and the result of the start.
#include "tests/launcher/launch_fixture.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kViewer = L"C:\\Apps\\Viewer\\viewer.exe";

struct LaunchCommand : Launch {
    /// The last argument of the start for the device with that identifier.
    std::wstring IdArgument(const std::wstring& id)
    {
        Kestra(kViewer, L"direct", L"volume", id);
        return spawns.Calls().back().arguments.back();
    }
};

TEST_F(LaunchCommand, NamesModeKindAndDevice)
{
    Kestra(kViewer, L"direct", L"volume", L"E:");
    EXPECT_EQ(spawns.Calls(),
              (Calls{{_P_NOWAIT,
                      kViewer,
                      {L"\"C:\\Apps\\Viewer\\viewer.exe\"", L"module=kestrafetch", L"params",
                       L"mode=direct", L"devType=volume", L"priDevId=\"E:\""}}}));
    EXPECT_EQ(trace.Lines(),
              Lines{L"\"C:\\Apps\\Viewer\\viewer.exe\" module=kestrafetch params mode=direct "
                    L"devType=volume priDevId=\"E:\""});
}

TEST_F(LaunchCommand, WithoutADeviceOmitsItsKindToo)
{
    Kestra(kViewer, L"direct", L"volume", L"");
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_NOWAIT,
                                      kViewer,
                                      {L"\"C:\\Apps\\Viewer\\viewer.exe\"", L"module=kestrafetch",
                                       L"params", L"mode=direct"}}}));
    EXPECT_EQ(trace.Lines(),
              Lines{L"\"C:\\Apps\\Viewer\\viewer.exe\" module=kestrafetch params mode=direct"});
}

TEST_F(LaunchCommand, WithoutAModeIsRefusedWhateverElseIsGiven)
{
    Kestra(kViewer, L"", L"volume", L"E:");
    Kestra(L"", L"", L"", L"");
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines(), (Lines{L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>",
                                    L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>"}));
}

TEST_F(LaunchCommand, PassesAQuotedPathUnchanged)
{
    Kestra(L"\"C:\\a b\\v.exe\"", L"select", L"", L"");
    EXPECT_EQ(spawns.Calls().at(0).file, L"\"C:\\a b\\v.exe\"");
    EXPECT_EQ(spawns.Calls().at(0).arguments.at(0), L"\"C:\\a b\\v.exe\"");
}

TEST_F(LaunchCommand, QuotesAPathThatOnlyEndsWithAQuote)
{
    Kestra(L"v.exe\"", L"select", L"", L"");
    EXPECT_EQ(spawns.Calls().at(0).file, L"v.exe\"");
    EXPECT_EQ(spawns.Calls().at(0).arguments.at(0), L"\"v.exe\"\"");
}

TEST_F(LaunchCommand, DoesNotSearchForAClosingQuote)
{
    Kestra(L"\"v.exe", L"select", L"", L"\"E:");
    EXPECT_EQ(spawns.Calls().at(0).arguments.at(0), L"\"v.exe");
    EXPECT_EQ(spawns.Calls().at(0).arguments.at(5), L"priDevId=\"E:");
}

TEST_F(LaunchCommand, OfAnEmptyPathIsTracedAsIfItHadWorked)
{
    Kestra(L"", L"direct", L"volume", L"E:");
    EXPECT_TRUE(spawns.Calls().empty()); // such a call makes the UCRT terminate the process
    EXPECT_EQ(trace.Lines(),
              Lines{L"\"\" module=kestrafetch params mode=direct devType=volume priDevId=\"E:\""});
}

TEST_F(LaunchCommand, EscapesNothing)
{
    EXPECT_EQ(IdArgument(L"E:\\"), L"priDevId=\"E:\\\"");
    EXPECT_EQ(IdArgument(L"a b"), L"priDevId=\"a b\"");
    EXPECT_EQ(IdArgument(L"\"a b\""), L"priDevId=\"a b\"");
    EXPECT_EQ(IdArgument(L"a\"b"), L"priDevId=\"a\"b\"");
    EXPECT_EQ(IdArgument(L"rame grabber\""), L"priDevId=\"rame grabber\"\"");
    EXPECT_EQ(IdArgument(L"\xD800 \x5199"), L"priDevId=\"\xD800 \x5199\"");
    Kestra(kViewer, L"my mode", L"some kind \"x\"", L"E:");
    EXPECT_EQ(spawns.Calls().back().arguments.at(3), L"mode=my mode");
    EXPECT_EQ(spawns.Calls().back().arguments.at(4), L"devType=some kind \"x\"");
}

TEST_F(LaunchCommand, IsNeverCut)
{
    for (const std::size_t length : {259U, 260U, 261U, 32767U}) {
        const std::wstring text(length, L't');
        EXPECT_EQ(IdArgument(text), L"priDevId=\"" + text + L"\"") << length;
        EXPECT_EQ(
            trace.Lines().back(),
            L"\"C:\\Apps\\Viewer\\viewer.exe\" module=kestrafetch params mode=direct devType=volume "
            L"priDevId=\"" +
                text + L"\"")
            << length;
        Kestra(text, L"direct", L"volume", L"E:");
        EXPECT_EQ(spawns.Calls().back().file, text) << length;
    }
}

TEST_F(LaunchCommand, IsTracedAfterTheStart)
{
    spawns.OnSpawn([&](const SpawnCall&) {
        EXPECT_TRUE(trace.Lines().empty());
    });
    Kestra(kViewer, L"direct", L"volume", L"E:");
    trace.Clear();
    Kestra(kViewer, L"direct", L"volume", L"");
    EXPECT_EQ(trace.Lines().size(), 1U);
}

TEST_F(LaunchCommand, LeavesNoHandleOfTheStartedProcess)
{
    for (const wchar_t* const id : {L"E:", L""}) {
        const HANDLE process = ::CreateMutexW(nullptr, FALSE, nullptr); // stands for the process
        spawns.Answer(reinterpret_cast<std::intptr_t>(process));
        Kestra(kViewer, L"direct", L"volume", id);
        DWORD flags = 0;
        EXPECT_FALSE(::GetHandleInformation(process, &flags));
    }
}

TEST_F(LaunchCommand, ClosesNothingWhenTheStartFails)
{
    spawns.Answer(-1);
    const FAKE_IMPORT(CloseHandle) close([](HANDLE) -> BOOL {
        return TRUE;
    });
    Kestra(kViewer, L"direct", L"volume", L"E:");
    Kestra(kViewer, L"direct", L"volume", L"");
    EXPECT_EQ(close.Calls(), 0);
}

TEST_F(LaunchCommand, LeavesItsArgumentsUnchanged)
{
    std::wstring path = kViewer;
    std::wstring mode = L"direct";
    handler.LaunchKestra(path, mode, volume, drive);
    EXPECT_EQ(path, kViewer);
    EXPECT_EQ(mode + volume + drive, L"directvolumeE:");
}

} // namespace
} // namespace kestraboot
