#include "legacy/proxy_launch.h"

#include "kestraboot/command_handler.h"
#include "tests/support/import_patch.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <process.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Lines = std::vector<std::wstring>;
using Calls = std::vector<SpawnCall>;

struct OrganiserProxy : testing::Test {
    std::wstring ParameterFor(const std::wstring& deviceType, const std::wstring& deviceId)
    {
        LaunchOrganiserProxy(L"p.exe", deviceType, deviceId);
        return spawns.Calls().back().arguments.at(2);
    }
    SpawnRecorder spawns;
    TraceRecorder trace;
};

TEST_F(OrganiserProxy, GetsTheDeviceOnItsCommandLine)
{
    LaunchOrganiserProxy(L"C:\\Legacy\\VelProxy.exe", L"scanner", L"WIA-0001");
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_NOWAIT,
                                      L"C:\\Legacy\\VelProxy.exe",
                                      {L"\"C:\\Legacy\\VelProxy.exe\"", L"-d", L"\"S|WIA-0001\""}}}));
    EXPECT_EQ(trace.Lines(), Lines{L"\"C:\\Legacy\\VelProxy.exe\" -d \"S|WIA-0001\""});
}

TEST_F(OrganiserProxy, IsTheOneThatTheHandlerStarts)
{
    std::wstring path = L"C:\\Legacy\\VelProxy.exe";
    std::wstring type = L"camera";
    std::wstring id = L"X";
    CKestraBootCommandHandler().LaunchVel3Proxy(path, type, id);
    EXPECT_EQ(spawns.Calls().at(0).arguments.at(2), L"\"C|X\"");
    EXPECT_EQ(spawns.Calls().at(0).file, L"C:\\Legacy\\VelProxy.exe");
    EXPECT_EQ(path + type + id, L"C:\\Legacy\\VelProxy.execameraX"); // unchanged
}

TEST_F(OrganiserProxy, GetsTheKindAsAMark)
{
    EXPECT_EQ(ParameterFor(L"volume", L"E:"), L"\"V|E:\"");
    EXPECT_EQ(ParameterFor(L"camera", L"E:"), L"\"C|E:\"");
    EXPECT_EQ(ParameterFor(L"scanner", L"E:"), L"\"S|E:\"");
    EXPECT_EQ(ParameterFor(L"Volume", L"E:"), L"\"V|E:\"");
    EXPECT_EQ(ParameterFor(L"SCANNER", L"E:"), L"\"S|E:\"");
}

TEST_F(OrganiserProxy, GetsTheMarkOfACameraForEveryOtherKind)
{
    for (const wchar_t* const kind :
         {L"mobile", L"video", L"audio", L"archive", L"unknown", L"", L"volumes", L" volume"}) {
        EXPECT_EQ(ParameterFor(kind, L"E:"), L"\"C|E:\"") << kind;
    }
}

TEST_F(OrganiserProxy, IsStartedForAnEmptyIdentifierToo)
{
    EXPECT_EQ(ParameterFor(L"camera", L""), L"\"C|\"");
}

TEST_F(OrganiserProxy, GetsAnIdentifierUnchanged)
{
    EXPECT_EQ(ParameterFor(L"volume", L"E:\\"), L"\"V|E:\\\"");
    EXPECT_EQ(ParameterFor(L"volume", L"\"a b\""), L"\"V|\"a b\"\"");
    EXPECT_EQ(ParameterFor(L"volume", L"\xD800"), L"\"V|\xD800\"");
    for (const std::size_t length : {259U, 260U, 261U, 32767U}) {
        const std::wstring id(length, L'i');
        EXPECT_EQ(ParameterFor(L"volume", id), L"\"V|" + id + L"\"") << length;
        EXPECT_EQ(trace.Lines().back(), L"\"p.exe\" -d \"V|" + id + L"\"") << length;
    }
}

TEST_F(OrganiserProxy, InQuotesIsNotQuotedAgain)
{
    LaunchOrganiserProxy(L"\"C:\\a b\\VelProxy.exe\"", L"volume", L"E:");
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_NOWAIT,
                                      L"\"C:\\a b\\VelProxy.exe\"",
                                      {L"\"C:\\a b\\VelProxy.exe\"", L"-d", L"\"V|E:\""}}}));
    EXPECT_EQ(trace.Lines(), Lines{L"\"C:\\a b\\VelProxy.exe\" -d \"V|E:\""});
}

TEST_F(OrganiserProxy, ThatCannotBeStartedIsTraced)
{
    spawns.Answer(-1);
    const FAKE_IMPORT(CloseHandle) close([](HANDLE) -> BOOL {
        return TRUE;
    });
    LaunchOrganiserProxy(L"C:\\Legacy\\VelProxy.exe", L"volume", L"E:");
    EXPECT_EQ(trace.Lines(), Lines{L"<KestraBoot><!!! Unable to start the process.>"});
    EXPECT_EQ(close.Calls(), 0);
}

TEST_F(OrganiserProxy, WithAnEmptyPathIsAFailedStart)
{
    for (const std::wstring& nothing : {std::wstring(), std::wstring(1, L'\0')}) {
        trace.Clear();
        LaunchOrganiserProxy(nothing, L"volume", L"E:");
        EXPECT_TRUE(spawns.Calls().empty()); // such a call makes the UCRT terminate the process
        EXPECT_EQ(trace.Lines(), Lines{L"<KestraBoot><!!! Unable to start the process.>"});
    }
}

TEST_F(OrganiserProxy, LeavesNoHandleOfTheStartedProcess)
{
    const HANDLE process = ::CreateMutexW(nullptr, FALSE, nullptr); // stands for the process
    spawns.Answer(reinterpret_cast<std::intptr_t>(process));
    LaunchOrganiserProxy(L"C:\\Legacy\\VelProxy.exe", L"volume", L"E:");
    DWORD flags = 0;
    EXPECT_FALSE(::GetHandleInformation(process, &flags));
    EXPECT_EQ(trace.Lines().size(), 1U);
}

} // namespace
} // namespace kestraboot
