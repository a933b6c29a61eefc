// A host process for the system tests. It loads the shipped kestraboot.dll, starts the service, and
// writes to its standard output one UTF-8 line for each event: "trace LINE" and "event KIND|IDENTIFIER";
// at first "threads N" and "ready". It writes "here" for each character of its input, and exits at the
// end of the input.
#include "kestraboot/device_connect.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <mutex>
#include <string>

namespace
{

std::mutex outputLock;
HANDLE output = INVALID_HANDLE_VALUE;

void Tell(const char* what, const std::wstring& text)
{
    char narrow[4096] = {};
    ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, narrow, sizeof narrow - 1, nullptr, nullptr);
    const std::string line = std::string(what) + " " + narrow + "\n";
    const std::lock_guard lock(outputLock);
    DWORD written = 0;
    ::WriteFile(output, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

void OnDeviceConnected(std::wstring& kind, std::wstring& deviceId)
{
    Tell("event", kind + L"|" + deviceId);
}

} // namespace

extern "C" int wmain(int argc, wchar_t** argv);

int wmain(int argc, wchar_t** argv)
{
    using namespace kestraboot::tests;
    if (argc != 2) {
        return 2;
    }
    const std::wstring pipe = argv[1];
    output =
        ::CreateFileW((pipe + L"-out").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const HANDLE input =
        ::CreateFileW((pipe + L"-in").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (output == INVALID_HANDLE_VALUE || input == INVALID_HANDLE_VALUE) {
        return 3;
    }
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    const FAKE_IMPORT(OutputDebugStringW) trace([](const wchar_t* line) {
        Tell("trace", line);
    });
    const FAKE_IMPORT(CreateThread)
        threads([&](SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE entry,
                    void* argument, DWORD flags, DWORD* id) {
            return threads.CallOriginal(security, stack, entry, argument, flags, id);
        });
    RegisterDeviceConnectCallback(OnDeviceConnected);
    StartDeviceConnectService();
    Tell("threads", std::to_wstring(threads.Calls()));
    Tell("ready", L"");
    char question = 0;
    DWORD got = 0;
    while (::ReadFile(input, &question, 1, &got, nullptr) && got != 0) {
        Tell("here", L"");
    }
    // Ends the tracker threads with the process, while the patches are in place.
    ::TerminateProcess(::GetCurrentProcess(), 0);
    return 0;
}
