// The boot program's own calls: its objects in a library, which a scene runs up to the start of the
// service. The system tests check the later steps, the message loop and the end of the process.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/support/process_end.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

using Main = int(WINAPI*)(HINSTANCE, HINSTANCE, LPWSTR, int);

const HANDLE kStandardHandle = reinterpret_cast<HANDLE>(std::uintptr_t{0x30});
wchar_t commandLine[64];
wchar_t proxyPath[MAX_PATH];

wchar_t* CommandLine() noexcept
{
    return commandLine;
}

DWORD OwnPath(HMODULE, wchar_t* path, DWORD capacity) noexcept
{
    std::wcsncpy(path, proxyPath, capacity);
    return static_cast<DWORD>(std::wcslen(proxyPath));
}

HANDLE StandardHandle(DWORD) noexcept
{
    return kStandardHandle;
}

BOOL SetStandardHandle(DWORD, HANDLE) noexcept
{
    Journal::Add(L"gives a standard handle up");
    return TRUE;
}

/// The handle type of a Windows-subsystem program that was started at a prompt.
DWORD TypeOfHandle(HANDLE) noexcept
{
    return FILE_TYPE_UNKNOWN;
}

BOOL Attach(DWORD process) noexcept
{
    Journal::Add(process == ATTACH_PARENT_PROCESS ? L"joins the parent's console" : L"joins a console");
    return TRUE;
}

BOOL Leave() noexcept
{
    Journal::Add(L"leaves its console");
    return TRUE;
}

FILE* Reopen(const char* name, const char*, FILE* stream) noexcept
{
    Journal::Add(std::strcmp(name, "CONOUT$") == 0 ? L"opens the console" : L"opens another file");
    return stream;
}

int Print(const wchar_t* text, FILE*) noexcept
{
    for (const wchar_t* character = text; *character != L'\0'; ++character) {
        Journal::AddConsole(*character);
    }
    return 0;
}

int Flush(FILE*) noexcept
{
    return 0;
}

BOOL SearchFolder(const wchar_t* folder) noexcept
{
    Journal::Add(L"searches libraries in", folder);
    return TRUE;
}

void StartTheService()
{
    Journal::Add(L"starts the service");
    throw ProcessEnded{0}; // through frames that let it pass
}

/// While they are created, the module under test is the boot program's.
struct BootPatches {
    ImportPatch line{"GetCommandLineW", CommandLine};
    ImportPatch path{"GetModuleFileNameW", OwnPath};
    ImportPatch standard{"GetStdHandle", StandardHandle};
    ImportPatch set{"SetStdHandle", SetStandardHandle};
    ImportPatch type{"GetFileType", TypeOfHandle};
    ImportPatch attach{"AttachConsole", Attach};
    ImportPatch leave{"FreeConsole", Leave};
    ImportPatch reopen{"freopen", Reopen};
    ImportPatch print{"fputws", Print};
    ImportPatch flush{"fflush", Flush};
    ImportPatch search{"SetDllDirectoryW", SearchFolder};
    ImportPatch start{"StartDeviceConnectService", StartTheService};
};

class BootAct final : public Act
{
public:
    BootAct(Machine& where, HMODULE program) : machine(where), module(program)
    {
        ::GetCurrentDirectoryW(MAX_PATH, folderBefore);
    }
    ~BootAct() override { PutBack(); }

    void Prepare() override
    {
        PutBack();
        machine.Restore();
    }

    void Run() override
    {
        const Armed armed;
        const auto entry = reinterpret_cast<void (*)()>(::GetProcAddress(module, "wWinMain"));
        const int code = reinterpret_cast<Main>(entry)(nullptr, nullptr, nullptr, 0);
        Journal::AddNumber(L"ends with", code);
    }

    void ShowResults() override
    {
        Journal::GoOn();
        machine.ShowStored();
        wchar_t folder[MAX_PATH] = {};
        ::GetCurrentDirectoryW(MAX_PATH, folder);
        if (std::wcscmp(folder, folderBefore) != 0) {
            Journal::Add(L"works in", folder);
        }
        PutBack();
    }

private:
    void PutBack()
    {
        CloseClaim();
        ::SetCurrentDirectoryW(folderBefore);
        ::UnregisterClassW(L"KestraBootControl", ::GetModuleHandleW(nullptr));
    }

    Machine& machine;
    HMODULE module;
    wchar_t folderBefore[MAX_PATH] = {};
};

class BootFaults : public testing::Test
{
protected:
    BootFaults() : module(::LoadLibraryW(L"boot_program.dll")) // stays: its patches end after this
    {
        if (module == nullptr) {
            throw std::runtime_error("the boot program's library cannot be loaded");
        }
        const std::filesystem::path proxy =
            std::filesystem::path(machine.Folder()) / L"Vellumry\\7.0\\proxy.exe";
        proxy.wstring().copy(proxyPath, MAX_PATH - 1);
        SetModuleUnderTest(module);
        patches = std::make_unique<BootPatches>();
        gate = std::make_unique<CallGate>(module, LetCallGoOn);
    }
    ~BootFaults() override
    {
        gate.reset();
        patches.reset();
        SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll")); // the machine's
    }

    void SweepBoth(const char* name, const wchar_t* line, const std::vector<Kept>& kept = {})
    {
        std::wcscpy(commandLine, line);
        Scene scene = {name,
                       [this] {
                           return std::make_unique<BootAct>(machine, module);
                       },
                       machine.Folder()};
        scene.kept = kept;
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    HMODULE module; // brings the library, which the machine steers
    Machine machine;
    ImportPatch libraryLine{"GetCommandLineW", CommandLine}; // the library reads the same
    std::unique_ptr<BootPatches> patches;
    std::unique_ptr<CallGate> gate;
};

TEST_F(BootFaults, OfAStart)
{
    SweepBoth("boot_start", L"kestraboot.exe",
              {{"", "windows 2",
                "the control window, with Windows' own of its thread, until the process ends"}});
}

TEST_F(BootFaults, OfAVersionQuery)
{
    SweepBoth("boot_version", L"kestraboot.exe --version");
}

TEST_F(BootFaults, OfAWrongDefault)
{
    SweepBoth("boot_default", L"kestraboot.exe -default Viewer maybe");
}

TEST_F(BootFaults, OfAnUninstall)
{
    SweepBoth("boot_uninstall", L"kestraboot.exe -uninstall",
              {{"K32EnumProcessModules", "handles 1", "the process that uninstalls ends soon after"}});
}

} // namespace
} // namespace kestraboot::tests
