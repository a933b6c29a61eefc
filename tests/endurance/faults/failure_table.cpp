// This table has each function that the product calls: with its ways of failure on Windows, as far as
// they differ to a caller, or among the functions that cannot fail. Memory of the C runtime is not for
// this table.
#include "tests/endurance/faults/failure_table.h"

#include <algorithm>

namespace kestraboot::tests
{
namespace
{

using Work = Failure::Work;

constexpr std::uint64_t kNull = 0;
constexpr std::uint64_t kMinusOne = ~std::uint64_t{0}; // also INVALID_HANDLE_VALUE, WAIT_FAILED, WEOF

constexpr std::uint64_t kServerGone = 0x800706BA; // RPC_S_SERVER_UNAVAILABLE
constexpr std::uint64_t kOutOfMemory = 0x8007000E;

template <typename Value>
Value* Pointer(const GatedCall& call, std::size_t argument)
{
    return reinterpret_cast<Value*>(call.Argument(argument));
}

void WantMoreBytes(const GatedCall& call)
{
    *Pointer<DWORD>(call, 5) += 64;
}

void WriteNothing(const GatedCall& call)
{
    *Pointer<DWORD>(call, 3) = 0;
}

bool HasValueBuffer(const GatedCall& call)
{
    return call.Argument(4) != 0 && call.Argument(5) != 0;
}

bool NamesAModule(const GatedCall& call)
{
    return call.Argument(0) != 0;
}

void FillName(const GatedCall& call)
{
    const auto capacity = static_cast<DWORD>(call.Argument(3));
    std::fill_n(Pointer<wchar_t>(call, 2), capacity, L'x');
}

void ClearObject(const GatedCall& call)
{
    *Pointer<void*>(call, 4) = nullptr;
}

// clang-format off
/// These have no failure that a caller could learn of.
constexpr const char* kCannotFail[] = {
    // kernel32
    "AcquireSRWLockExclusive", "DeleteCriticalSection", "EnterCriticalSection", "ExitProcess", "GetCommandLineW",
    "GetCurrentProcess", "GetCurrentProcessId", "GetLastError", "GetProcessHeap", "GetSystemTimeAsFileTime", "GetTickCount64", "InitializeCriticalSection",
    "IsDBCSLeadByteEx", "LeaveCriticalSection", "OutputDebugStringW", "ReleaseSRWLockExclusive", "SetErrorMode", "SetLastError", "Sleep",
    // ole32, user32: messages that do not exist, and functions whose result no caller reads
    "CoUninitialize", "wsprintfW", "DefWindowProcW", "DispatchMessageW", "PeekMessageW", "TranslateMessage",
    // msvcrt: text and memory
    "_wcsicmp", "_wcslwr", "_wcsnicmp", "_wtoi", "memchr", "memcmp", "memcpy", "memmove", "memset", "strlen", "islower", "isprint", "isspace", "isupper", "strncmp", "tolower",
    "_strtoi64", "_strtoui64", "wcscmp", "wcslen", "wcsncpy", "wcsrchr", "wcsstr", "wcstoul",
    // msvcrt: standard error, whose failure nobody can be told, and the tools' help
    "fputc", "fputs", "puts",
    // msvcrt: kinds of options that the tools do not have
    "_stat64", "getenv",
    // msvcrt: the runtime's own start, end, locale and streams
    "___lc_codepage_func", "___mb_cur_max_func", "__iob_func", "_amsg_exit", "_errno", "_initterm", "_lock", "_unlock",
    "_wassert", "abort", "fwrite", "localeconv", "strerror", "vfprintf",
    "TlsGetValue", "VirtualProtect", "VirtualQuery", "WideCharToMultiByte",
    // advapi32, msvcrt: the hardened build's own checks of the stack, at the start and on a failure
    "CryptAcquireContextA", "CryptGenRandom", "CryptReleaseContext", "_close", "_exit", "_open", "_write",
    // the same of the UCRT
    "__acrt_iob_func", "__daylight", "__p___argc", "__p___argv", "__p___wargv", "__p__environ", "__p__wenviron",
    "__stdio_common_vfprintf", "__timezone", "__tzname", "_configure_narrow_argv", "_configure_wide_argv",
    "_crt_at_quick_exit", "_crt_atexit", "_execute_onexit_table", "_initialize_narrow_environment",
    "_initialize_onexit_table", "_initialize_wide_environment", "_lock_file", "_register_onexit_function",
    "_set_new_mode", "_tzset", "_unlock_file", "mbrtowc", "strtoll", "strtoull", "wcrtomb",
    // msvcrt: memory runs out in the sweep of allocations
    "calloc", "free", "malloc", "realloc",
};
// clang-format on

} // namespace

// clang-format off
const std::vector<FunctionFailures>& FailureTable()
{
    static const std::vector<FunctionFailures> table = {
        // advapi32
        {"ConvertStringSecurityDescriptorToSecurityDescriptorW", {{"no memory", FALSE, ERROR_NOT_ENOUGH_MEMORY}}, 1},
        {"GetTokenInformation", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"LookupAccountSidW", {{"no name", FALSE, ERROR_NONE_MAPPED}}},
        {"OpenProcessToken", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"OpenSCManagerW", {{"denied", kNull, ERROR_ACCESS_DENIED}}, 1},
        {"OpenServiceW", {{"denied", kNull, ERROR_ACCESS_DENIED}, {"not found", kNull, ERROR_SERVICE_DOES_NOT_EXIST}}, 1},
        {"QueryServiceConfigW", {{"denied", FALSE, ERROR_ACCESS_DENIED}, {"too long", FALSE, ERROR_INSUFFICIENT_BUFFER}}},
        {"QueryServiceStatus", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"CloseServiceHandle", {{"bad handle", FALSE, ERROR_INVALID_HANDLE, Work::Done}}, -1},
        {"RegOpenKeyExW", {{"not found", ERROR_FILE_NOT_FOUND}, {"denied", ERROR_ACCESS_DENIED}, {"no memory", ERROR_NO_SYSTEM_RESOURCES}}},
        {"RegCreateKeyExW", {{"denied", ERROR_ACCESS_DENIED}, {"no memory", ERROR_NO_SYSTEM_RESOURCES}}},
        {"RegQueryValueExW", {{"not found", ERROR_FILE_NOT_FOUND}, {"denied", ERROR_ACCESS_DENIED}, {"key gone", ERROR_KEY_DELETED},
                              {"grown", ERROR_MORE_DATA, 0, Work::None, WantMoreBytes, HasValueBuffer}}},
        {"RegSetValueExW", {{"denied", ERROR_ACCESS_DENIED}, {"key gone", ERROR_KEY_DELETED}, {"no memory", ERROR_NO_SYSTEM_RESOURCES}}},
        {"RegEnumKeyExW", {{"no more", ERROR_NO_MORE_ITEMS}, {"too long", ERROR_MORE_DATA}, {"key gone", ERROR_KEY_DELETED}}},
        {"RegDeleteTreeW", {{"denied", ERROR_ACCESS_DENIED}, {"key gone", ERROR_KEY_DELETED}}},
        {"RegEnumValueW", {{"no more", ERROR_NO_MORE_ITEMS}, {"too long", ERROR_MORE_DATA}, {"key gone", ERROR_KEY_DELETED}}},
        {"RegOverridePredefKey", {{"denied", ERROR_ACCESS_DENIED}, {"no memory", ERROR_NO_SYSTEM_RESOURCES}}},
        {"RegDeleteValueW", {{"not found", ERROR_FILE_NOT_FOUND}, {"denied", ERROR_ACCESS_DENIED}}},
        {"RegCloseKey", {{"bad handle", ERROR_INVALID_HANDLE, 0, Work::Done}}},
        // kernel32
        {"AttachConsole", {{"no console", FALSE, ERROR_INVALID_HANDLE}, {"has one", FALSE, ERROR_ACCESS_DENIED}}},
        {"CloseHandle", {{"bad handle", FALSE, ERROR_INVALID_HANDLE, Work::Done}}},
        {"CreateEventW", {{"exists", 0, ERROR_ALREADY_EXISTS, Work::DoneWithItsResult}, {"denied", kNull, ERROR_ACCESS_DENIED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"CreateFileMappingW", {{"exists", 0, ERROR_ALREADY_EXISTS, Work::DoneWithItsResult}, {"denied", kNull, ERROR_ACCESS_DENIED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"CreateMutexExW", {{"exists", 0, ERROR_ALREADY_EXISTS, Work::DoneWithItsResult}, {"denied", kNull, ERROR_ACCESS_DENIED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"CreateFileW", {{"not found", kMinusOne, ERROR_FILE_NOT_FOUND}, {"denied", kMinusOne, ERROR_ACCESS_DENIED}, {"in use", kMinusOne, ERROR_SHARING_VIOLATION}}},
        {"CreateMutexW", {{"exists", 0, ERROR_ALREADY_EXISTS, Work::DoneWithItsResult}, {"denied", kNull, ERROR_ACCESS_DENIED},
                          {"other kind", kNull, ERROR_INVALID_HANDLE}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"CreateThread", {{"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}, {"denied", kNull, ERROR_ACCESS_DENIED}}},
        {"CreateToolhelp32Snapshot", {{"no memory", kMinusOne, ERROR_NOT_ENOUGH_MEMORY}, {"partial", kMinusOne, ERROR_PARTIAL_COPY}}},
        {"FileTimeToSystemTime", {{"bad time", FALSE, ERROR_INVALID_PARAMETER}}},
        {"FindClose", {{"bad handle", FALSE, ERROR_INVALID_HANDLE, Work::Done}}},
        {"FindFirstFileW", {{"not found", kMinusOne, ERROR_FILE_NOT_FOUND}, {"denied", kMinusOne, ERROR_ACCESS_DENIED}, {"not ready", kMinusOne, ERROR_NOT_READY}}},
        {"FindNextFileW", {{"no more", FALSE, ERROR_NO_MORE_FILES}, {"not ready", FALSE, ERROR_NOT_READY}}},
        {"FormatMessageW", {{"no text", 0, ERROR_MR_MID_NOT_FOUND}}},
        {"FreeConsole", {{"no console", FALSE, ERROR_INVALID_PARAMETER}}},
        {"FreeLibrary", {{"not found", FALSE, ERROR_MOD_NOT_FOUND, Work::Done}}},
        {"GetFileType", {{"unknown", FILE_TYPE_UNKNOWN, ERROR_INVALID_HANDLE}, {"console", FILE_TYPE_CHAR}, {"file", FILE_TYPE_DISK}}},
        {"GetConsoleScreenBufferInfo", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"GetConsoleMode", {{"no console", FALSE, ERROR_INVALID_HANDLE}}},
        {"GetEnvironmentVariableW", {{"not found", 0, ERROR_ENVVAR_NOT_FOUND}}},
        {"GetDriveTypeW", {{"unknown", DRIVE_UNKNOWN}, {"no root", DRIVE_NO_ROOT_DIR}}},
        {"GetFileInformationByHandle", {{"not ready", FALSE, ERROR_NOT_READY}}},
        {"GetFileSizeEx", {{"not ready", FALSE, ERROR_NOT_READY}}},
        {"GetFileTime", {{"not ready", FALSE, ERROR_NOT_READY}}},
        {"GetLogicalDrives", {{"none", 0, ERROR_NOT_ENOUGH_MEMORY}}},
        {"GetModuleFileNameW", {{"bad handle", 0, ERROR_INVALID_HANDLE}}},
        {"GetModuleHandleW", {{"not found", kNull, ERROR_MOD_NOT_FOUND, Work::None, nullptr, NamesAModule}}},
        {"GetPrivateProfileSectionW", {{"not found", 0, ERROR_FILE_NOT_FOUND}, {"denied", 0, ERROR_ACCESS_DENIED}}},
        {"GetPrivateProfileStringW", {{"not found", 0, ERROR_FILE_NOT_FOUND}}},
        {"GetProcAddress", {{"not found", kNull, ERROR_PROC_NOT_FOUND}}},
        {"GetStdHandle", {{"bad handle", kMinusOne, ERROR_INVALID_HANDLE}, {"none", kNull}}},
        {"GetSystemDirectoryW", {{"no path", 0, ERROR_PATH_NOT_FOUND}, {"too long", 300}}},
        {"GetVersionExW", {{"bad size", FALSE, ERROR_INSUFFICIENT_BUFFER}}},
        {"GetWindowsDirectoryW", {{"no path", 0, ERROR_PATH_NOT_FOUND}, {"too long", 300}}},
        {"GetVolumeInformationW", {{"not ready", FALSE, ERROR_NOT_READY}, {"denied", FALSE, ERROR_ACCESS_DENIED}, {"no file system", FALSE, ERROR_UNRECOGNIZED_VOLUME}}},
        {"GlobalFree", {{"bad handle", 1, ERROR_INVALID_HANDLE, Work::Done}}, -1},
        {"HeapAlloc", {{"no memory", kNull}}, 1},
        {"HeapFree", {{"bad handle", FALSE, ERROR_INVALID_PARAMETER, Work::Done}}, -1},
        {"K32EnumProcessModules", {{"denied", FALSE, ERROR_ACCESS_DENIED}, {"partial", FALSE, ERROR_PARTIAL_COPY}}},
        {"K32GetModuleFileNameExW", {{"bad handle", 0, ERROR_INVALID_HANDLE}, {"too long", 259, ERROR_INSUFFICIENT_BUFFER, Work::None, FillName}}},
        {"LoadLibraryExW", {{"not found", kNull, ERROR_FILE_NOT_FOUND}, {"denied", kNull, ERROR_ACCESS_DENIED}, {"no library", kNull, ERROR_BAD_EXE_FORMAT}}},
        {"LoadLibraryW", {{"not found", kNull, ERROR_MOD_NOT_FOUND}, {"no library", kNull, ERROR_BAD_EXE_FORMAT}, {"refuses", kNull, ERROR_DLL_INIT_FAILED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"LocalFree", {{"bad handle", 1, ERROR_INVALID_HANDLE, Work::Done}}, -1},
        {"LocalSize", {{"bad handle", 0, ERROR_INVALID_HANDLE}}},
        {"MapViewOfFile", {{"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}, 1},
        {"MoveFileExW", {{"not found", FALSE, ERROR_FILE_NOT_FOUND}, {"in use", FALSE, ERROR_SHARING_VIOLATION}}},
        {"MultiByteToWideChar", {{"too long", 0, ERROR_INSUFFICIENT_BUFFER}, {"no such text", 0, ERROR_NO_UNICODE_TRANSLATION}}},
        {"OpenEventW", {{"denied", kNull, ERROR_ACCESS_DENIED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"OpenMutexW", {{"not found", kNull, ERROR_FILE_NOT_FOUND}, {"denied", kNull, ERROR_ACCESS_DENIED}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"OpenProcess", {{"denied", kNull, ERROR_ACCESS_DENIED}, {"gone", kNull, ERROR_INVALID_PARAMETER}}},
        {"Process32FirstW", {{"no more", FALSE, ERROR_NO_MORE_FILES}, {"bad size", FALSE, ERROR_BAD_LENGTH}}},
        {"Process32NextW", {{"no more", FALSE, ERROR_NO_MORE_FILES}}},
        {"ProcessIdToSessionId", {{"gone", FALSE, ERROR_INVALID_PARAMETER}, {"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"QueryFullProcessImageNameW", {{"gone", FALSE, ERROR_GEN_FAILURE}}},
        {"ReadFile", {{"not ready", FALSE, ERROR_NOT_READY}}},
        {"ReleaseMutex", {{"not owned", FALSE, ERROR_NOT_OWNER, Work::Done}}},
        {"ResetEvent", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"SetEvent", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"SystemTimeToFileTime", {{"bad time", FALSE, ERROR_INVALID_PARAMETER}}},
        {"SystemTimeToTzSpecificLocalTime", {{"no time zone", FALSE, ERROR_INVALID_PARAMETER}}},
        {"UnmapViewOfFile", {{"bad address", FALSE, ERROR_INVALID_ADDRESS, Work::Done}}, -1},
        {"WaitForMultipleObjects", {{"bad handle", kMinusOne, ERROR_INVALID_HANDLE}}},
        {"SetConsoleTextAttribute", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"SetConsoleCtrlHandler", {{"no memory", FALSE, ERROR_NOT_ENOUGH_MEMORY}}},
        {"SetDllDirectoryW", {{"no memory", FALSE, ERROR_NOT_ENOUGH_MEMORY}}},
        {"SetProcessShutdownParameters", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"SetStdHandle", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"SetCurrentDirectoryW", {{"not found", FALSE, ERROR_PATH_NOT_FOUND}, {"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"TerminateProcess", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"WaitForSingleObject", {{"bad handle", kMinusOne, ERROR_INVALID_HANDLE}, {"timeout", WAIT_TIMEOUT}}},
        {"WriteConsoleW", {{"bad handle", FALSE, ERROR_INVALID_HANDLE}}},
        {"WriteFile", {{"disk full", FALSE, ERROR_DISK_FULL}, {"pipe gone", FALSE, ERROR_BROKEN_PIPE}, {"nothing", TRUE, 0, Work::None, WriteNothing}}},
        // msvcrt
        {"_vsnwprintf", {{"no format", kMinusOne}}},
        {"_vscwprintf", {{"no format", kMinusOne}}},
        {"_wspawnlp", {{"not found", kMinusOne, ERROR_FILE_NOT_FOUND}, {"denied", kMinusOne, ERROR_ACCESS_DENIED}, {"no memory", kMinusOne, ERROR_NOT_ENOUGH_MEMORY}}},
        {"fflush", {{"closed", kMinusOne}}},
        {"fputws", {{"closed", kMinusOne}}},
        {"freopen", {{"not found", kNull}}},
        {"fputwc", {{"closed", 0xFFFF}}},
        {"fwprintf", {{"closed", kMinusOne}}},
        // version, wtsapi32
        {"GetFileVersionInfoSizeW", {{"no resource", 0, ERROR_RESOURCE_TYPE_NOT_FOUND}, {"denied", 0, ERROR_ACCESS_DENIED}}},
        {"GetFileVersionInfoW", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"VerQueryValueW", {{"not found", FALSE, ERROR_RESOURCE_TYPE_NOT_FOUND}}},
        {"WTSFreeMemory", {}, -1},
        {"WTSQuerySessionInformationW", {{"denied", FALSE, ERROR_ACCESS_DENIED}}, 1},
        // ole32, shell32, shlwapi
        {"CoCreateInstance", {{"no class", 0x80040154, 0, Work::None, ClearObject}, {"denied", 0x80070005, 0, Work::None, ClearObject},
                              {"no server", 0x80080005, 0, Work::None, ClearObject}, {"no memory", 0x8007000E, 0, Work::None, ClearObject}}},
        {"CoInitialize", {{"other mode", 0x80010106}, {"no memory", 0x8007000E}}},
        {"FreePropVariantArray", {{"bad value", 0x80070057, 0, Work::Done}}},
        {"CommandLineToArgvW", {{"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}, 1},
        {"PathFileExistsW", {{"not found", FALSE, ERROR_FILE_NOT_FOUND}, {"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"PathIsDirectoryW", {{"not found", FALSE, ERROR_FILE_NOT_FOUND}}},
        {"PathRemoveFileSpecW", {{"nothing", FALSE}}},
        // user32
        {"CreateWindowExW", {{"no handles", kNull, ERROR_NO_MORE_USER_HANDLES}, {"no memory", kNull, ERROR_NOT_ENOUGH_MEMORY}}},
        {"DestroyWindow", {{"bad window", FALSE, ERROR_INVALID_WINDOW_HANDLE, Work::Done}}},
        {"EnumWindows", {{"denied", FALSE, ERROR_ACCESS_DENIED}}},
        {"GetMessageW", {{"bad window", kMinusOne, ERROR_INVALID_WINDOW_HANDLE}}},
        {"GetWindowThreadProcessId", {{"bad window", 0, ERROR_INVALID_WINDOW_HANDLE}}},
        {"GetWindowTextW", {{"bad window", 0, ERROR_INVALID_WINDOW_HANDLE}}},
        {"MsgWaitForMultipleObjectsEx", {{"bad handle", kMinusOne, ERROR_INVALID_HANDLE}}},
        {"RegisterClassExW", {{"exists", 0, ERROR_CLASS_ALREADY_EXISTS}, {"no memory", 0, ERROR_NOT_ENOUGH_MEMORY}}},
        {"SendMessageW", {{"denied", 0, ERROR_ACCESS_DENIED}}},
        // the C++ runtime: no thread
        {"std::thread", {{"no memory", 0}}},
        // WIA: a service that has gone, and its own error answers
        {"IWiaDevMgr::EnumDeviceInfo", {{"no server", kServerGone}, {"no memory", kOutOfMemory}}},
        {"IWiaDevMgr::RegisterEventCallbackInterface", {{"no server", kServerGone}, {"denied", 0x80070005}}},
        {"IEnumWIA_DEV_INFO::Reset", {{"no server", kServerGone}}},
        {"IEnumWIA_DEV_INFO::Next", {{"no more", 1}, {"no server", kServerGone}}},
        {"IWiaPropertyStorage::ReadMultiple", {{"no value", 1}, {"no server", kServerGone}, {"no memory", kOutOfMemory}}},
        // still imaging
        {"StiCreateInstance", {{"no class", 0x80040154}, {"no memory", kOutOfMemory}}},
        {"IStillImage::GetDeviceList", {{"no server", kServerGone}, {"no memory", kOutOfMemory}}, 1},
        // TWAIN: TWRC_FAILURE, TWRC_ENDOFLIST
        {"DSM_Entry.MSG_OPENDSM", {{"failure", 1}}},
        {"DSM_Entry.MSG_CLOSEDSM", {{"failure", 1}}},
        {"DSM_Entry.MSG_GETFIRST", {{"failure", 1}, {"no more", 7}}},
        {"DSM_Entry.MSG_GETNEXT", {{"failure", 1}, {"no more", 7}}},
        // device plugins: the operation does not give its result
        {"FxPluginMain", {{"gives nothing", 0}}},
        {"IPluginDescriptor::Query.13", {{"gives nothing", 0}}},
        {"IPluginDescriptor::Query.1", {{"gives nothing", 0}}},
        {"IPluginDescriptor::GetName", {{"gives nothing", 0}}},
        {"IPluginDescriptor::GetValue", {{"gives nothing", 0}}},
        {"IPluginDescriptor::GetIdentifier", {{"gives nothing", 0}}},
        {"IPluginDescriptor::SetListEntry", {{"gives nothing", 0}}},
        {"IPluginDescriptor::ShutDown", {{"gives nothing", 0}}},
        {"ISourceManager::Query.13", {{"gives nothing", 0}}},
        {"ISourceManager::GetCategory", {{"gives nothing", 0}}},
        {"ISourceManager::RegisterCallback", {{"gives nothing", 0}}},
        {"ISourceManager::UnregisterCallback", {{"gives nothing", 0}}},
    };
    return table;
}
// clang-format on

const FunctionFailures* FailuresOf(std::string_view function)
{
    if (function == "__stdio_common_vfwprintf") {
        function = "fwprintf";
    } else if (function == "__stdio_common_vswprintf") {
        function = "_vsnwprintf";
    }
    const auto& table = FailureTable();
    const auto known = std::ranges::find(table, function, [](const FunctionFailures& entry) {
        return std::string_view(entry.function);
    });
    if (known != table.end()) {
        return &*known;
    }
    static const FunctionFailures cannotFail = {"", {}};
    const bool listed = std::ranges::any_of(kCannotFail, [&](const char* name) {
        return function == name;
    });
    return listed ? &cannotFail : nullptr;
}

const FunctionFailures* FailuresWithoutBufferOf(std::string_view function)
{
    return function == "__stdio_common_vswprintf" ? FailuresOf("_vscwprintf") : nullptr;
}

} // namespace kestraboot::tests
