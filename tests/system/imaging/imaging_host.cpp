// A host process for the system tests. It loads the shipped kestraboot.dll, starts the service, and
// writes one line for each event: "trace LINE" and "event KIND|IDENTIFIER"; at first "threads N" and
// "ready". It repeats each command, and exits at the end of the commands.
#include "kestraboot/device_connect.h"
#include "tests/support/host_channel.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <optional>
#include <string>

namespace
{

std::optional<kestraboot::tests::HostChannel> test;

void OnDeviceConnected(std::wstring& kind, std::wstring& deviceId)
{
    test->Say("event", kind + L"|" + deviceId);
}

} // namespace

extern "C" int wmain(int argc, wchar_t** argv);

int wmain(int argc, wchar_t** argv)
{
    using namespace kestraboot::tests;
    if (argc != 2) {
        return 2;
    }
    test.emplace(argv[1]);
    if (!test->IsOpen()) {
        return 3;
    }
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    const FAKE_IMPORT(OutputDebugStringW) trace([](const wchar_t* line) {
        test->Say("trace", line);
    });
    const FAKE_IMPORT(CreateThread)
        threads([&](SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE entry,
                    void* argument, DWORD flags, DWORD* id) {
            return threads.CallOriginal(security, stack, entry, argument, flags, id);
        });
    RegisterDeviceConnectCallback(OnDeviceConnected);
    StartDeviceConnectService();
    test->Say("threads " + std::to_string(threads.Calls()));
    test->Say("ready");
    for (std::string command; test->Next(command);) {
        test->Say(command);
    }
    // Ends the tracker threads with the process, while the patches are in place.
    ::TerminateProcess(::GetCurrentProcess(), 0);
    return 0;
}
