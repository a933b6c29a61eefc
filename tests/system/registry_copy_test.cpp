// The copy of the registry's keys that kestractl works on, and its remains if it cannot be made.
#include "tools/ctl/registry_copy.h"

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/system/child_process.h"
#include "tests/system/installation.h"
#include "tests/system/registry_dump.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

using tools::RegistryCopy;

const std::wstring kApplication = L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch";

class CopyOfTheRegistry : public testing::Test
{
protected:
    CopyOfTheRegistry()
    {
        ClearCorvaneRegistry();
        PutText(HKEY_LOCAL_MACHINE, kApplication, L"Name", L"Viewer");
        PutDword(HKEY_CURRENT_USER, kApplication + L"\\Preferences", L"DefaultFlag", 1);
        PutText(HKEY_LOCAL_MACHINE, kRun, L"Corvane Kestrafetch", L"\"C:\\boot.exe\"");
        PutText(HKEY_LOCAL_MACHINE, kRun, L"another program", L"x");
        before = RegistryDump();
    }
    ~CopyOfTheRegistry() override { ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kRun, L"another program"); }

    static bool CanBeMade()
    {
        try {
            const RegistryCopy copy;
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    }

    static constexpr const wchar_t* kRun = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
    std::vector<std::string> before;
};

TEST_F(CopyOfTheRegistry, HoldsWhatTheLibraryReads)
{
    const RegistryCopy copy;
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kApplication, L"Name"), L"Viewer");
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, kApplication + L"\\Preferences", L"DefaultFlag"), 1U);
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRun, L"Corvane Kestrafetch"), L"\"C:\\boot.exe\"");
    EXPECT_FALSE(StoredText(HKEY_LOCAL_MACHINE, kRun, L"another program"));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT"));
}

TEST_F(CopyOfTheRegistry, ReceivesTheWritesAndIsDeletedAtTheEnd)
{
    {
        const RegistryCopy copy;
        HKEY key = nullptr;
        ASSERT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kRun, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
        EXPECT_EQ(::RegDeleteValueW(key, L"Corvane Kestrafetch"), ERROR_SUCCESS);
        ::RegCloseKey(key);
        RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane");
    }
    EXPECT_EQ(RegistryDump(), before);
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kApplication, L"Name"), L"Viewer");
}

TEST_F(CopyOfTheRegistry, ReceivesNewKeysAsTheLibraryCreatesThem)
{
    const RegistryCopy copy;
    HKEY made = nullptr;
    const std::wstring path = L"SOFTWARE\\Corvane\\New\\Corvane Kestrafetch\\Preferences";
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                KEY_WRITE, nullptr, &made, nullptr),
              ERROR_SUCCESS);
    ::RegCloseKey(made);
}

TEST_F(CopyOfTheRegistry, LeavesNothingWhicheverStepFails)
{
    // Fails the n-th registry call of each kind in turn, until a copy is completed.
    for (long failing = 1;; ++failing) {
        ASSERT_LT(failing, 200);
        long calls = 0;
        const auto fails = [&] {
            return ++calls == failing;
        };
        const FAKE_IMPORT(RegCreateKeyExW)
            create([&](HKEY parent, const wchar_t* path, DWORD reserved, wchar_t* kind, DWORD options,
                       REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* created, DWORD* disposition) {
                return fails() ? LSTATUS{ERROR_ACCESS_DENIED}
                               : create.CallOriginal(parent, path, reserved, kind, options, access,
                                                     security, created, disposition);
            });
        const FAKE_IMPORT(RegSetValueExW) set([&](HKEY key, const wchar_t* name, DWORD reserved,
                                                  DWORD type, const BYTE* data, DWORD size) {
            return fails() ? LSTATUS{ERROR_NO_SYSTEM_RESOURCES}
                           : set.CallOriginal(key, name, reserved, type, data, size);
        });
        const FAKE_IMPORT(RegOverridePredefKey) replace([&](HKEY root, HKEY with) {
            return with != nullptr && fails() ? LSTATUS{ERROR_ACCESS_DENIED}
                                              : replace.CallOriginal(root, with);
        });
        if (CanBeMade()) {
            EXPECT_GT(failing, 10) << "no step failed";
            break;
        }
        EXPECT_EQ(RegistryDump(), before) << failing;
    }
    EXPECT_EQ(RegistryDump(), before);
}

TEST_F(CopyOfTheRegistry, StatesWhyItCannotBeCreated)
{
    const FAKE_IMPORT(RegCreateKeyExW) create(
        [](HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM, SECURITY_ATTRIBUTES*, HKEY*, DWORD*) {
            return LSTATUS{ERROR_ACCESS_DENIED};
        });
    std::string said;
    try {
        const RegistryCopy copy;
    } catch (const std::runtime_error& error) {
        said = error.what();
    }
    EXPECT_THAT(
        said, testing::MatchesRegex("cannot make a copy of the registry's keys: .*denied.* .error 5."));
}

TEST_F(CopyOfTheRegistry, ShowsOneApplicationAlone)
{
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Viewer", L"locale", L"de_de");
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Other\\Corvane Kestrafetch", L"Name", L"Other");
    const std::vector<std::string> stored = RegistryDump();
    {
        RegistryCopy copy;
        copy.ShowOnly(L"SOFTWARE\\Corvane\\Other\\Corvane Kestrafetch");
        EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kApplication));
        copy.ShowOnly(kApplication);
        EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, kApplication));
        EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Viewer", L"locale"), L"de_de");
        EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Other"));
        EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, kApplication)) << "the keys of the user are complete";
    }
    EXPECT_EQ(RegistryDump(), stored);
}

TEST_F(CopyOfTheRegistry, RemovesTheLeftoversOfATerminatedProcessAlone)
{
    const std::wstring left = L"Software\\kestractl copy 4294967292"; // no process has that number
    const std::wstring own = L"Software\\kestractl copy " + std::to_wstring(::GetCurrentProcessId());
    ChildProcess viewer(BuiltPrograms() / "kestratrace.exe");
    const std::wstring others = L"Software\\kestractl copy " + std::to_wstring(viewer.Id());
    for (const std::wstring& key : {left, own, others}) {
        PutText(HKEY_CURRENT_USER, key + L"\\machine\\SOFTWARE\\Corvane\\Old", L"Name", L"stale");
    }
    {
        const RegistryCopy copy;
        EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Old"));
    }
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, left));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, own));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, others));
    RemoveKey(HKEY_CURRENT_USER, others);
}

} // namespace
} // namespace kestraboot::tests
