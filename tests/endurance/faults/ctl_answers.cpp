#include "tests/endurance/faults/ctl_answers.h"

#include <cwchar>
#include <string_view>
#include <tlhelp32.h>
#include <wtsapi32.h>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kOwnNumber = 4711;
constexpr DWORD kBootNumber = 5000;
const HWND kBootWindow = reinterpret_cast<HWND>(std::uintptr_t{0x222});
CtlAnswersGiven given;
int listed = 0;

/// Must be closed; what waits for it finds that the process has ended.
HANDLE SomeHandle() noexcept
{
    return ::CreateEventW(nullptr, TRUE, TRUE, nullptr);
}

UINT Copy(std::wstring_view text, wchar_t* to, DWORD capacity) noexcept
{
    to[text.copy(to, capacity - 1)] = L'\0';
    return static_cast<UINT>(text.size());
}

DWORD OwnNumber() noexcept
{
    return kOwnNumber;
}

HANDLE OpenByNumber(DWORD, BOOL, DWORD) noexcept
{
    return SomeHandle();
}

BOOL AskImage(HANDLE, DWORD, wchar_t* path, DWORD* length) noexcept
{
    *length = Copy(given.bootProgram, path, *length);
    return TRUE;
}

BOOL OpenToken(HANDLE, DWORD, HANDLE* token) noexcept
{
    *token = SomeHandle();
    return TRUE;
}

BOOL ReadToken(HANDLE, TOKEN_INFORMATION_CLASS, void*, DWORD, DWORD*) noexcept
{
    return TRUE;
}

BOOL NameAccount(const wchar_t*, PSID, wchar_t* name, DWORD* nameLength, wchar_t* domain,
                 DWORD* domainLength, SID_NAME_USE*) noexcept
{
    Copy(L"anna", name, *nameLength);
    Copy(L"PC", domain, *domainLength);
    return TRUE;
}

BOOL AskSession(DWORD, DWORD* session) noexcept
{
    *session = 1;
    return TRUE;
}

BOOL AskSessionText(HANDLE, DWORD, WTS_INFO_CLASS what, wchar_t** text, DWORD*) noexcept
{
    static wchar_t user[] = L"anna";
    static wchar_t domain[] = L"PC";
    *text = what == WTSUserName ? user : domain;
    return TRUE;
}

void FreeText(void*) noexcept {}

HANDLE OpenClaim(DWORD, BOOL, const wchar_t*) noexcept
{
    return SomeHandle();
}

BOOL ListWindows(WNDENUMPROC callback, LPARAM parameter)
{
    return callback(reinterpret_cast<HWND>(std::uintptr_t{0x111}), parameter) &&
           callback(kBootWindow, parameter);
}

int ReadTitle(HWND window, wchar_t* title, int capacity) noexcept
{
    const bool isBoot = window == kBootWindow && given.hasWindow;
    return static_cast<int>(
        Copy(isBoot ? L"Corvane Kestrafetch Boot" : L"Other", title, static_cast<DWORD>(capacity)));
}

DWORD OwnerOf(HWND, DWORD* process) noexcept
{
    *process = kBootNumber;
    return 1;
}

HANDLE TakeSnapshot(DWORD, DWORD) noexcept
{
    listed = 0;
    return SomeHandle();
}

BOOL ListProcess(HANDLE, PROCESSENTRY32W* entry) noexcept
{
    constexpr int kProcesses = 2;
    entry->th32ProcessID = kBootNumber;
    if (listed++ < kProcesses) {
        return TRUE;
    }
    ::SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
}

BOOL AskVersion(OSVERSIONINFOW* version) noexcept
{
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    version->dwMajorVersion = 5;
    version->dwMinorVersion = 1;
    version->dwBuildNumber = 2600;
    reinterpret_cast<OSVERSIONINFOEXW*>(version)->wProductType = VER_NT_WORKSTATION;
    return TRUE;
}

UINT AskWindowsFolder(wchar_t* path, UINT capacity) noexcept
{
    return Copy(given.windowsFolder, path, capacity);
}

UINT AskSystemFolder(wchar_t* path, UINT capacity) noexcept
{
    const UINT length = AskWindowsFolder(path, capacity);
    std::wcscat(path, L"\\system32");
    return length + 9;
}

DWORD AskVariable(const wchar_t*, wchar_t*, DWORD) noexcept
{
    ::SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
}

DWORD AskPath(HMODULE, wchar_t* path, DWORD capacity) noexcept
{
    return Copy(given.ownProgram, path, capacity);
}

HANDLE OpenNamedEvent(DWORD, BOOL, const wchar_t*) noexcept
{
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

SC_HANDLE OpenManager(const wchar_t*, const wchar_t*, DWORD) noexcept
{
    return reinterpret_cast<SC_HANDLE>(std::uintptr_t{0x51});
}

SC_HANDLE OpenNamedService(SC_HANDLE, const wchar_t*, DWORD) noexcept
{
    return reinterpret_cast<SC_HANDLE>(std::uintptr_t{0x52});
}

BOOL ReadConfiguration(SC_HANDLE, QUERY_SERVICE_CONFIGW* configuration, DWORD, DWORD*) noexcept
{
    configuration->dwStartType = SERVICE_DEMAND_START;
    return TRUE;
}

BOOL ReadStatus(SC_HANDLE, SERVICE_STATUS* status) noexcept
{
    status->dwCurrentState = SERVICE_RUNNING;
    return TRUE;
}

BOOL CloseService(SC_HANDLE) noexcept
{
    return TRUE;
}

BOOL ListModules(HANDLE, HMODULE* list, DWORD, DWORD* bytes) noexcept
{
    *list = reinterpret_cast<HMODULE>(0x400000);
    *bytes = sizeof(HMODULE);
    return TRUE;
}

DWORD ReadModulePath(HANDLE, HMODULE, wchar_t* path, DWORD capacity) noexcept
{
    return Copy(given.ownProgram, path, capacity);
}

std::unique_ptr<LibraryAnswers> AnswerTheLibrary()
{
    const HMODULE tool = ModuleUnderTest();
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    auto answers = std::make_unique<LibraryAnswers>();
    SetModuleUnderTest(tool);
    return answers;
}

} // namespace

LibraryAnswers::LibraryAnswers()
    : modules("K32EnumProcessModules", ListModules), path("K32GetModuleFileNameExW", ReadModulePath)
{
}

CtlAnswersGiven& CtlAnswer()
{
    return given;
}

CtlAnswers::CtlAnswers()
    : ofTheLibrary(AnswerTheLibrary()), number("GetCurrentProcessId", OwnNumber),
      open("OpenProcess", OpenByNumber), image("QueryFullProcessImageNameW", AskImage),
      token("OpenProcessToken", OpenToken), tokenData("GetTokenInformation", ReadToken),
      account("LookupAccountSidW", NameAccount), session("ProcessIdToSessionId", AskSession),
      sessionText("WTSQuerySessionInformationW", AskSessionText), freeText("WTSFreeMemory", FreeText),
      claim("OpenMutexW", OpenClaim), windows("EnumWindows", ListWindows),
      title("GetWindowTextW", ReadTitle), owner("GetWindowThreadProcessId", OwnerOf),
      snapshot("CreateToolhelp32Snapshot", TakeSnapshot), firstProcess("Process32FirstW", ListProcess),
      nextProcess("Process32NextW", ListProcess), version("GetVersionExW", AskVersion),
      windowsFolder("GetWindowsDirectoryW", AskWindowsFolder),
      systemFolder("GetSystemDirectoryW", AskSystemFolder),
      variable("GetEnvironmentVariableW", AskVariable), path("GetModuleFileNameW", AskPath),
      event("OpenEventW", OpenNamedEvent), manager("OpenSCManagerW", OpenManager),
      service("OpenServiceW", OpenNamedService), configuration("QueryServiceConfigW", ReadConfiguration),
      status("QueryServiceStatus", ReadStatus), closeService("CloseServiceHandle", CloseService)
{
}

} // namespace kestraboot::tests
