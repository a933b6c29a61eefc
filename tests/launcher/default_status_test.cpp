#include "kestraboot/command_handler.h"
#include "tests/support/console_recorder.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <optional>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Flags = std::vector<std::optional<std::uint32_t>>;
constexpr std::nullopt_t kNone = std::nullopt;

/// Three applications. The first has both preferences keys, the second the user's, and the third the
/// machine's: reading it makes the user's.
struct DefaultStatus : testing::Test {
    DefaultStatus()
    {
        for (const wchar_t* const name : {L"One", L"Two", L"Xray"}) {
            samples.push_back(RegisterSample(folder.Path(), name));
        }
        PutDword(HKEY_CURRENT_USER, samples[0].Preferences(), L"DefaultFlag", 1);
        PutDword(HKEY_LOCAL_MACHINE, samples[0].Preferences(), L"DefaultFlag", 1);
        PutDword(HKEY_CURRENT_USER, samples[1].Preferences(), L"DefaultFlag", 7);
        PutDword(HKEY_LOCAL_MACHINE, samples[2].Preferences(), L"DefaultFlag", 1);
        MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    }
    struct Result {
        bool done;
        std::string console;
    };
    Result Set(std::wstring name, std::wstring value)
    {
        ConsoleRecorder console;
        const bool done = handler.SetApplicationDefaultStatus(name, value);
        return {done, console.Text()};
    }
    [[nodiscard]] Flags Stored(HKEY root) const
    {
        Flags flags;
        for (const SampleApplication& sample : samples) {
            flags.push_back(StoredDword(root, sample.Preferences(), L"DefaultFlag"));
        }
        return flags;
    }
    RegistrySandbox sandbox;
    TempFolder folder;
    std::vector<SampleApplication> samples;
    CKestraBootCommandHandler handler;
};

TEST_F(DefaultStatus, YesMakesTheNamedApplicationTheOnlyDefault)
{
    const Result result = Set(L"Two", L"yes");
    EXPECT_TRUE(result.done);
    EXPECT_EQ(result.console, "");
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{0, 1, 0}));
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE), (Flags{0, kNone, 0}));
    std::vector<appInfo_tag> defaults;
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults)); // reloaded
    ASSERT_EQ(defaults.size(), 1U);
    EXPECT_EQ(defaults[0].Name, L"Two");
}

TEST_F(DefaultStatus, YesForTheOnlyDefaultLeavesTheSameState)
{
    ASSERT_TRUE(Set(L"Xray", L"yes").done);
    ASSERT_TRUE(Set(L"Xray", L"yes").done);
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{0, 0, 1}));
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE), (Flags{0, kNone, 1}));
}

TEST_F(DefaultStatus, NoClearsTheNamedApplicationAlone)
{
    EXPECT_TRUE(Set(L"One", L"no").done);
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{0, 7, 0}));
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE), (Flags{0, kNone, 1}));
}

TEST_F(DefaultStatus, NoForTheOnlyDefaultLeavesNone)
{
    ASSERT_TRUE(Set(L"One", L"yes").done);
    ASSERT_TRUE(Set(L"One", L"no").done);
    std::vector<appInfo_tag> defaults;
    EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults));
    EXPECT_TRUE(defaults.empty());
}

TEST_F(DefaultStatus, IsSetWithYesAndNoInAnyCase)
{
    EXPECT_TRUE(Set(L"Two", L"YES").done);
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{0, 1, 0}));
    EXPECT_TRUE(Set(L"Two", L"No").done);
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{0, 0, 0}));
}

TEST_F(DefaultStatus, OfAnUnknownNameIsRefusedWithoutAWrite)
{
    for (const wchar_t* const name : {L"Four", L"two", L"", L"Two "}) {
        for (const wchar_t* const value : {L"yes", L"maybe"}) { // the name is reported for any value
            const Result result = Set(name, value);
            EXPECT_FALSE(result.done) << name;
            EXPECT_EQ(result.console, "\n !!! Invalid first argument value."
                                      "\n !!! This application is not registered as Kestra compatible.")
                << name;
        }
    }
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE), (Flags{1, kNone, 1}));
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{1, 7, 0}));
}

TEST_F(DefaultStatus, OfAnotherValueIsRefusedWithoutAWrite)
{
    for (const wchar_t* const value : {L"maybe", L"", L"ye", L"yess", L"1", L" no"}) {
        const Result result = Set(L"Two", value);
        EXPECT_FALSE(result.done) << value;
        EXPECT_EQ(result.console, "\n !!! Invalid second argument value.") << value;
    }
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE), (Flags{1, kNone, 1}));
    EXPECT_EQ(Stored(HKEY_CURRENT_USER), (Flags{1, 7, 0}));
}

TEST_F(DefaultStatus, ThatCannotBeWrittenIsNotReported)
{
    const FAKE_IMPORT(RegSetValueExW) set([](auto...) -> LONG {
        return ERROR_ACCESS_DENIED;
    });
    const Result result = Set(L"Two", L"yes");
    EXPECT_TRUE(result.done);
    EXPECT_EQ(result.console, "");
}

TEST_F(DefaultStatus, MaintainsTheOrderBeforeAndAfter)
{
    int written = 0;
    const FAKE_IMPORT(RegSetValueExW) set([&](HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                              const BYTE* data, DWORD size) -> LONG {
        written += std::wstring(name) == kRunValue ? 1 : 0;
        return set.CallOriginal(key, name, reserved, type, data, size);
    });
    EXPECT_FALSE(Set(L"Four", L"yes").done);
    EXPECT_EQ(written, 1);
    EXPECT_FALSE(Set(L"Two", L"maybe").done);
    EXPECT_EQ(written, 2);
    EXPECT_TRUE(Set(L"Two", L"yes").done);
    EXPECT_EQ(written, 4);
    EXPECT_TRUE(Set(L"Two", L"no").done);
    EXPECT_EQ(written, 6);
}

TEST_F(DefaultStatus, ClearsEveryFlagInOrderThenSetsTheNamedOne)
{
    PutDword(HKEY_CURRENT_USER, samples[2].Preferences(), L"DefaultFlag", 0); // so that no read makes it
    std::vector<std::uint32_t> values;
    const FAKE_IMPORT(RegSetValueExW) set([&](HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                              const BYTE* data, DWORD size) -> LONG {
        if (std::wstring(name) == L"DefaultFlag") {
            values.push_back(*data);
        }
        return set.CallOriginal(key, name, reserved, type, data, size);
    });
    EXPECT_TRUE(Set(L"One", L"yes").done);
    EXPECT_EQ(values, (std::vector<std::uint32_t>{0, 0, 0, 0, 0, 1, 1}));
}

TEST_F(DefaultStatus, LeavesTheArgumentsUnchangedAndNoHandleOpen)
{
    std::wstring name = L"Two";
    std::wstring value = L"YES";
    EXPECT_EQ(HandlesLeftBy([&] {
                  EXPECT_TRUE(handler.SetApplicationDefaultStatus(name, value));
              }),
              0);
    EXPECT_EQ(name + value, L"TwoYES");
}

TEST_F(DefaultStatus, WithoutAnApplicationEndsTheProcess)
{
    const ProcessEndCatcher catcher;
    const SpawnRecorder spawns;
    RemoveKey(HKEY_LOCAL_MACHINE, kRoot);
    ConsoleRecorder console;
    std::wstring name = L"Two";
    std::wstring value = L"maybe";
    EXPECT_THROW(static_cast<void>(handler.SetApplicationDefaultStatus(name, value)), ProcessEnded);
    EXPECT_EQ(console.Text(), "");
}

} // namespace
} // namespace kestraboot
