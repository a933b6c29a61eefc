// Values that no installer should write: all types and sizes, without terminators, with zeros inside.
#include "tests/registry/handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct BadValues : testing::Test {
    RegistrySandbox sandbox;
    TempFolder folder;
    OpenHandler handler;
};

TEST_F(BadValues, OfEveryTypeAndSizeDropNoOtherApplication)
{
    RegisterSample(folder.Path(), L"Good");
    const std::wstring key = L"SOFTWARE\\Corvane\\Bad\\Corvane Kestrafetch";
    const std::string bytes(300'001, '\x41');
    // For a text of one byte, Wine 8 itself reads the byte before the caller's buffer.
    const char* const guard = std::getenv("KESTRABOOT_GUARD");
    const std::size_t fewest = guard != nullptr && std::string_view(guard) == "start" ? 2 : 1;
    for (const DWORD type : std::initializer_list<DWORD>{REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY,
                                                         REG_DWORD, REG_MULTI_SZ, REG_QWORD, 4711}) {
        for (const std::size_t size : {std::size_t{0}, fewest, std::size_t{2}, std::size_t{3},
                                       std::size_t{519}, std::size_t{520}, std::size_t{300'001}}) {
            for (const wchar_t* const name : {L"Name", L"ProxyPath", L"CmdLine", L"Icon", L"Desc"}) {
                PutBytes(HKEY_LOCAL_MACHINE, key, name, type, bytes.data(), size);
            }
            for (const wchar_t* const name : {L"Image", L"Audio", L"Video"}) {
                PutBytes(HKEY_LOCAL_MACHINE, key + L"\\File Formats", name, type, bytes.data(), size);
            }
            PutBytes(HKEY_CURRENT_USER, key + L"\\Preferences", L"DefaultFlag", type, bytes.data(),
                     size);
            PutBytes(HKEY_CURRENT_USER, key + L"\\Preferences", L"AutoLaunchOnDeviceConnect", type,
                     bytes.data(), size);
            handler.LoadInformation();
            ASSERT_EQ(handler.Names(), Names{L"Good"}) << type << ", " << size << " bytes";
        }
    }
}

TEST_F(BadValues, WithoutTerminatorsAreReadToTheirEnd)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    const auto put = [&](const wchar_t* name, const std::wstring& text) {
        PutBytes(HKEY_LOCAL_MACHINE, sample.keyPath, name, REG_SZ, text.data(),
                 text.size() * sizeof(wchar_t));
    };
    put(L"Name", L"a rather long name");
    put(L"ProxyPath", sample.proxyPath);
    put(L"Desc", L"d");
    put(L"CmdLine", sample.commandPath);
    put(L"Icon", L"");
    handler.LoadInformation();
    ASSERT_EQ(handler.Names(), Names{L"a rather long name"});
    EXPECT_EQ(handler.applications[0].ProxyPath, sample.proxyPath);
    EXPECT_EQ(handler.applications[0].CmdLine, sample.commandPath);
    EXPECT_EQ(handler.applications[0].Desc, L"d");
    EXPECT_EQ(handler.applications[0].Icon, L"");
}

TEST_F(BadValues, WithZerosInsideEndAtTheFirst)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"Name", std::wstring_view(L"short\0long", 10));
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"Desc", std::wstring_view(L"\0hidden", 7));
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath + L"\\File Formats", L"Image",
            std::wstring_view(L"jpg\0tif", 7));
    handler.LoadInformation();
    ASSERT_EQ(handler.Names(), Names{L"short"});
    EXPECT_EQ(handler.applications[0].Desc, L"");
    ASSERT_EQ(handler.applications[0].FileFormats.size(), 1U);
    EXPECT_EQ(handler.applications[0].FileFormats[0].Extension, L"jpg");
}

TEST_F(BadValues, OfAFlagInAnotherSizeCountAsMissing)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    const std::uint64_t one = 1;
    PutBytes(HKEY_CURRENT_USER, sample.Preferences(), L"AutoLaunchOnDeviceConnect", REG_QWORD, &one, 8);
    PutBytes(HKEY_CURRENT_USER, sample.Preferences(), L"DefaultFlag", REG_BINARY, &one, 2);
    handler.LoadInformation();
    ASSERT_EQ(handler.Names(), Names{L"Viewer"});
    EXPECT_EQ(handler.applications[0].DefaultFlag, 0U);
}

TEST_F(BadValues, OfAPathOfAnyLengthIsNoFile)
{
    RegisterSample(folder.Path(), L"Good");
    const SampleApplication bad = RegisterSample(folder.Path(), L"Bad");
    for (const std::size_t length : {259U, 260U, 261U, 32767U}) {
        for (const std::wstring& path :
             {std::wstring(length, L'p'), L"C:\\" + std::wstring(length, L'p'),
              std::wstring(length - 1, L'\\') + L'"', std::wstring(length, L'\xD800')}) {
            PutText(HKEY_LOCAL_MACHINE, bad.keyPath, L"CmdLine", path);
            handler.LoadInformation();
            EXPECT_EQ(handler.Names(), Names{L"Good"}) << length;
        }
    }
}

TEST_F(BadValues, LeaveNoHandleOpen)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutBytes(HKEY_LOCAL_MACHINE, sample.keyPath, L"Name", REG_BINARY, "abc", 3);
    EXPECT_EQ(HandlesLeftBy([&] {
                  handler.LoadInformation();
              }),
              0);
}

} // namespace
} // namespace kestraboot
