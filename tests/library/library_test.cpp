// The shipped library from a host's view.
#include "kestraboot/kestraboot.h"
#include "tests/support/compatible_application.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/source_file.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <exception>
#include <fstream>
#include <process.h>
#include <string>
#include <winver.h>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

class Library : public testing::Test
{
protected:
    Library() { SetModuleUnderTest(dll); }

    const HMODULE dll = ::GetModuleHandleW(L"kestraboot.dll");
};

TEST_F(Library, ExportsEveryListedFunction)
{
    std::ifstream list(SourceFile("tests/library/exports.txt"));
    int found = 0;
    for (std::string name; std::getline(list, name);) {
        if (!name.empty() && name[0] != '#') {
            EXPECT_NE(::GetProcAddress(dll, name.c_str()), nullptr) << name;
            ++found;
        }
    }
    EXPECT_EQ(found, 21);
}

TEST_F(Library, CarriesItsVersion)
{
    const HRSRC resource = ::FindResourceW(dll, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
    ASSERT_NE(resource, nullptr);
    const auto* const bytes = static_cast<const char*>(::LockResource(::LoadResource(dll, resource)));
    const std::string_view version(bytes, ::SizeofResource(dll, resource));
    // The fixed part: its signature, its own version, then the library's (verrsrc.h).
    VS_FIXEDFILEINFO fixed = {};
    const std::size_t start = version.find("\xBD\x04\xEF\xFE");
    ASSERT_NE(start, std::string_view::npos);
    ASSERT_LE(start + sizeof fixed, version.size());
    std::memcpy(&fixed, version.data() + start, sizeof fixed);
    EXPECT_EQ(fixed.dwFileVersionMS, DWORD{KESTRABOOT_VERSION_MAJOR << 16 | KESTRABOOT_VERSION_MINOR});
    EXPECT_EQ(fixed.dwFileVersionLS, DWORD{KESTRABOOT_VERSION_PATCH << 16});
}

TEST_F(Library, TheFunctionsOfTheServiceHaveTheirPlainNames)
{
    EXPECT_EQ(reinterpret_cast<void*>(::GetProcAddress(dll, "StartDeviceConnectService")),
              reinterpret_cast<void*>(&StartDeviceConnectService));
    EXPECT_EQ(reinterpret_cast<void*>(::GetProcAddress(dll, "RegisterDeviceConnectCallback")),
              reinterpret_cast<void*>(&RegisterDeviceConnectCallback));
}

TEST_F(Library, RecordsAndExceptionsCrossItsBoundary)
{
    RegistrySandbox registry;
    TempFolder files;
    const std::wstring program = files.AddFile(L"app.exe").wstring();
    Register({L"SOFTWARE\\Corvane\\One\\Corvane Kestrafetch", L"One", RunningExecutable(), program,
              L"jpg tif"});
    CKestraBootCommandHandler handler;
    handler.LoadInformation();
    std::vector<appInfo_tag> all;
    ASSERT_TRUE(handler.GetAllApplicationInfo(all));
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].Name, L"One");
    EXPECT_EQ(all[0].FileFormats.size(), 2U);

    // Out of memory inside the library, caught by the host.
    const FAKE_IMPORT(RegOpenKeyExW) failing([](HKEY, const wchar_t*, DWORD, REGSAM, HKEY*) -> LONG {
        throw std::bad_alloc();
    });
    EXPECT_THROW(handler.LoadInformation(), std::bad_alloc);
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

/// Every tracker that may run, without its own thread; the test runs the volume tracker's road itself.
class WholeLibrary : public Library
{
protected:
    static void Launch(std::wstring& kind, std::wstring& deviceId)
    {
        CKestraBootCommandHandler handler;
        handler.LaunchDefaultKestra(kind, deviceId);
        throw std::runtime_error("an exception of the host");
    }
};

std::vector<std::wstring> spawned;

intptr_t RecordSpawn(int mode, const wchar_t* file, const wchar_t* first, ...)
{
    spawned = {std::to_wstring(mode), file};
    va_list rest;
    va_start(rest, first);
    for (const wchar_t* argument = first; argument != nullptr; argument = va_arg(rest, const wchar_t*)) {
        spawned.emplace_back(argument);
    }
    va_end(rest);
    return -1;
}

TEST_F(WholeLibrary, LeadsFromAReadableCardToTheApplicationsCommandLine)
{
    RegistrySandbox registry;
    TempFolder files;
    const std::wstring program = files.AddFile(L"app.exe").wstring();
    Register(
        {L"SOFTWARE\\Corvane\\One\\Corvane Kestrafetch", L"One", RunningExecutable(), program, L"jpg"});

    TraceRecorder trace;
    bool cardIn = false;
    LPTHREAD_START_ROUTINE volumeTracker = nullptr;
    const FAKE_IMPORT(GetVersionExW) vista([](OSVERSIONINFOW* record) {
        record->dwPlatformId = VER_PLATFORM_WIN32_NT;
        record->dwMajorVersion = 6;
        record->dwMinorVersion = 0;
        reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = VER_NT_WORKSTATION;
        return TRUE;
    });
    const FAKE_IMPORT(CreateThread)
        threads([&](SECURITY_ATTRIBUTES*, std::size_t, LPTHREAD_START_ROUTINE entry, void*, DWORD,
                    DWORD*) -> HANDLE {
            volumeTracker =
                volumeTracker == nullptr ? entry : volumeTracker; // the first one that is started
            return nullptr;
        });
    const FAKE_IMPORT(GetLogicalDrives) logical([&] {
        return cardIn ? DWORD{1 << 2 | 1 << 4} : DWORD{1 << 2};
    });
    const FAKE_IMPORT(GetDriveTypeW) types([](const wchar_t* root) -> UINT {
        return root[0] == L'E' ? DRIVE_REMOVABLE : DRIVE_FIXED;
    });
    const FAKE_IMPORT(GetVolumeInformationW)
        volumes([](const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t*, DWORD) {
            return TRUE;
        });
    const FAKE_IMPORT(FindFirstFileW) listing([](const wchar_t*, WIN32_FIND_DATAW* entry) {
        *entry = {};
        std::wcscpy(entry->cFileName, L"IMG_0001.JPG");
        return reinterpret_cast<HANDLE>(1);
    });
    const FAKE_IMPORT(FindClose) closing([](HANDLE) {
        return TRUE;
    });
    // No window: the loop's first message ends it.
    const FAKE_IMPORT(RegisterClassExW) noClass([](const WNDCLASSEXW*) -> ATOM {
        return 0;
    });
    const FAKE_IMPORT(CreateWindowExW)
        noWindow([](DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND, HMENU,
                    HINSTANCE, void*) -> HWND {
            return nullptr;
        });
    const FAKE_IMPORT(PeekMessageW) ready([](MSG*, HWND, UINT, UINT, UINT) {
        return TRUE;
    });
    const FAKE_IMPORT(GetMessageW) quit([](MSG*, HWND, UINT, UINT) {
        return FALSE;
    });
    const ImportPatch spawn("_wspawnlp", RecordSpawn);

    RegisterDeviceConnectCallback(Launch);
    StartDeviceConnectService();
    ASSERT_NE(volumeTracker, nullptr);
    EXPECT_EQ(volumeTracker(nullptr), 0U); // treats the existing cards as known
    cardIn = true;
    EXPECT_EQ(volumeTracker(nullptr), 0U);
    RegisterDeviceConnectCallback(nullptr);

    EXPECT_THAT(spawned, ElementsAre(L"1", program, L"\"" + program + L"\"", L"module=kestrafetch",
                                     L"params", L"mode=direct", L"devType=volume", L"priDevId=\"E:\""));
    EXPECT_EQ(std::uncaught_exceptions(), 0)
        << "the exception of the callback was not handled completely";
    EXPECT_EQ(trace.Count(L"\"" + program +
                          L"\" module=kestrafetch params mode=direct devType=volume priDevId=\"E:\""),
              1);
}

} // namespace
} // namespace kestraboot::tests
