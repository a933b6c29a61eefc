#include "tests/endurance/faults/machine.h"

#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/processes.h"
#include "tests/support/process_end.h"
#include "tests/support/sample_application.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <optional>
#include <process.h>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kOwn = L"SOFTWARE\\Corvane\\Vellumry\\7.0";
constexpr const wchar_t* kOwnKey = L"SOFTWARE\\Corvane\\Vellumry\\7.0\\Corvane Kestrafetch";
constexpr const wchar_t* kOwnPreferences =
    L"SOFTWARE\\Corvane\\Vellumry\\7.0\\Corvane Kestrafetch\\Preferences";
constexpr const wchar_t* kOtherPreferences =
    L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch\\Preferences";

constexpr DWORD kXpMajor = 5;
constexpr DWORD kXpMinor = 1;
DWORD versionMajor = kXpMajor;
DWORD versionMinor = kXpMinor;

wchar_t claimName[64];
HANDLE claim = nullptr;

void WriteLine(const wchar_t* line) noexcept
{
    Journal::Add(L"trace", line);
}

std::intptr_t Start(int mode, const wchar_t* file, const wchar_t* first, ...) noexcept
{
    Journal::Add(mode == _P_DETACH ? L"starts, detached," : L"starts", file);
    std::va_list rest;
    va_start(rest, first);
    for (const wchar_t* argument = first; argument != nullptr; argument = va_arg(rest, const wchar_t*)) {
        Journal::Add(L"  with", argument);
    }
    va_end(rest);
    return mode == _P_DETACH ? 0 : reinterpret_cast<std::intptr_t>(OpenSomeProcess());
}

[[noreturn]] void EndProcess(UINT code)
{
    Journal::AddNumber(L"ENDS THE PROCESS with", code);
    Journal::Stop();
    throw ProcessEnded{code};
}

void Wait(DWORD milliseconds) noexcept
{
    Journal::AddNumber(L"waits", milliseconds);
}

HANDLE MakeMutex(SECURITY_ATTRIBUTES* security, BOOL owned, const wchar_t*) noexcept
{
    return claim = ::CreateMutexW(security, owned, claimName); // a name that no other test has
}

BOOL Close(HANDLE handle) noexcept
{
    claim = handle == claim ? nullptr : claim;
    return ::CloseHandle(handle);
}

int PrintAll(const wchar_t* format, std::va_list arguments) noexcept
{
    wchar_t text[512] = {};
    const int length = _vsnwprintf(text, 511, format, arguments);
    for (const wchar_t* character = text; *character != L'\0'; ++character) {
        Journal::AddConsole(*character);
    }
    return length;
}

#if defined(_UCRT)
constexpr const char* kPrint = "__stdio_common_vfwprintf";
int Print(unsigned long long, FILE*, const wchar_t* format, _locale_t, std::va_list arguments) noexcept
{
    return PrintAll(format, arguments);
}
#else
constexpr const char* kPrint = "fwprintf";
int Print(FILE*, const wchar_t* format, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, format);
    const int length = PrintAll(format, arguments);
    va_end(arguments);
    return length;
}
#endif

wchar_t* CommandLine() noexcept
{
    static wchar_t line[] = L"kestraboot.exe -default Viewer yes";
    return line;
}

BOOL WINAPI AnswerVersion(OSVERSIONINFOW* version) noexcept
{
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    version->dwMajorVersion = versionMajor;
    version->dwMinorVersion = versionMinor;
    if (version->dwOSVersionInfoSize >= sizeof(OSVERSIONINFOEXW)) {
        reinterpret_cast<OSVERSIONINFOEXW*>(version)->wProductType = VER_NT_WORKSTATION;
    }
    return TRUE;
}

void PutFlag(HKEY root, const wchar_t* key, std::uint32_t value)
{
    PutDword(root, key, L"DefaultFlag", value);
}

void ShowNumber(const wchar_t* what, HKEY root, const wchar_t* key, const wchar_t* name, int before)
{
    const auto stored = StoredDword(root, key, name);
    const int now = stored ? static_cast<int>(*stored) : -1;
    if (now != before) {
        Journal::AddNumber(what, now);
    }
}

} // namespace

struct Machine::Patches {
    ImportPatch line{"OutputDebugStringW", WriteLine};
    ImportPatch start{"_wspawnlp", Start};
    ImportPatch end{"ExitProcess", EndProcess};
    ImportPatch wait{"Sleep", Wait};
    ImportPatch mutex{"CreateMutexW", MakeMutex};
    ImportPatch close{"CloseHandle", Close};
    ImportPatch print{kPrint, Print};
    ImportPatch commandLine{"GetCommandLineW", CommandLine};
    ImportPatch version{"GetVersionExW", AnswerVersion};
    ProcessPatches processes;
};

Machine::Machine() : folder(files.Path().wstring())
{
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    std::swprintf(claimName, 64, L"KestrabootFaults-%lu", ::GetCurrentProcessId());
    const SampleApplication own = RegisterSample(files.Path(), L"Vellumry\\7.0");
    const SampleApplication other = RegisterSample(files.Path(), L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"Name", L"Own");
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"Desc", L"the own one");
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"Icon", L"own.ico");
    for (const SampleApplication& application : {own, other}) {
        PutText(HKEY_LOCAL_MACHINE, application.keyPath + L"\\File Formats", L"Image", L"jpg tif");
        PutText(HKEY_LOCAL_MACHINE, application.keyPath + L"\\File Formats", L"Audio", L"mp3");
        PutText(HKEY_LOCAL_MACHINE, application.keyPath + L"\\File Formats", L"Video", L"avi");
    }
    PutText(HKEY_LOCAL_MACHINE, kOwn, L"locale", L"de_de");
    RegisterOrganiser(L"C:\\Legacy");
    PutText(HKEY_LOCAL_MACHINE,
            L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers\\Handlers\\"
            L"CorvaneVellumryShowPicturesOnArrival",
            L"Action", L"show the pictures");
    PutFlag(HKEY_LOCAL_MACHINE, kOwnPreferences, 0);
    PutFlag(HKEY_LOCAL_MACHINE, kOtherPreferences, 0);
    SetRunningProgram(own.proxyPath);
    patches = new Patches;
}

Machine::~Machine()
{
    delete patches;
    SetModuleUnderTest(nullptr);
}

void Machine::Restore()
{
    ::RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE");
    PutFlag(HKEY_CURRENT_USER, kOwnPreferences, 1);
    for (const wchar_t* const preferences : {kOwnPreferences, kOtherPreferences}) {
        if (KeyExists(HKEY_LOCAL_MACHINE, preferences)) {
            PutFlag(HKEY_LOCAL_MACHINE, preferences, 0);
        }
    }
    PutDword(HKEY_CURRENT_USER, kOwn, L"kestralaunchstatus", 0);
    PutDword(HKEY_CURRENT_USER, kOwnKey, L"SniffDepth", 3);
    PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L"before");
    RestartProcesses();
}

void Machine::ShowStored() const
{
    const std::optional<std::wstring> run = StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue);
    if (run != L"before") {
        Journal::Add(L"auto-run is", run ? run->c_str() : L"gone");
    }
    ShowNumber(L"the user's own flag is", HKEY_CURRENT_USER, kOwnPreferences, L"DefaultFlag", 1);
    ShowNumber(L"the user's other flag is", HKEY_CURRENT_USER, kOtherPreferences, L"DefaultFlag", -1);
    if (KeyExists(HKEY_LOCAL_MACHINE, kOwnPreferences)) {
        ShowNumber(L"the machine's own flag is", HKEY_LOCAL_MACHINE, kOwnPreferences, L"DefaultFlag", 0);
        ShowNumber(L"the machine's other flag is", HKEY_LOCAL_MACHINE, kOtherPreferences, L"DefaultFlag",
                   0);
    }
    ShowNumber(L"the launch status is", HKEY_CURRENT_USER, kOwn, L"kestralaunchstatus", 0);
}

void Machine::RemoveApplications() const
{
    RemoveKey(HKEY_LOCAL_MACHINE, kOwnKey);
    RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Viewer");
}

void Machine::PutOemFile(const char* line) const
{
    files.AddFile(L"Vellumry\\7.0\\OEM\\album.ini",
                  std::string("[KestraProxyStopInstall]\r\n") + line + "\r\n");
}

void CloseClaim()
{
    if (claim != nullptr) {
        Journal::Add(L"the claim is held");
        ::CloseHandle(claim);
        claim = nullptr;
    }
}

WindowsVersion::WindowsVersion(DWORD major, DWORD minor) noexcept
{
    versionMajor = major;
    versionMinor = minor;
}

WindowsVersion::~WindowsVersion()
{
    versionMajor = kXpMajor;
    versionMinor = kXpMinor;
}

} // namespace kestraboot::tests
