// A host process for the system tests. It loads the shipped kestraboot.dll, starts the service, and
// reports the events to its parent.
//
// It writes a line each: "trace TEXT", "sleep MILLISECONDS" (the library waits until a command wakes
// it), "device KIND ID", and the answers. Its commands: "wake" ends one wait; "loaded PATH" answers
// "loaded yes" or "loaded no"; "throw" makes the next report throw. It exits at the end of the commands.
#include "kestraboot/device_connect.h"
#include "tests/support/host_channel.h"
#include "tests/support/import_patch.h"

#include <windows.h>
#include <atomic>
#include <optional>
#include <string>

namespace
{

using kestraboot::tests::HostChannel;
using kestraboot::tests::SetModuleUnderTest;

std::optional<HostChannel> test;
std::atomic<bool> throwNext = false;

void OnDevice(std::wstring& kind, std::wstring& deviceId)
{
    test->Say("device", kind + L" " + deviceId);
    if (throwNext.exchange(false)) {
        throw 42;
    }
}

void Obey(const std::string& command, HANDLE wake)
{
    if (command == "wake") {
        ::ReleaseSemaphore(wake, 1, nullptr);
    } else if (command == "throw") {
        throwNext = true;
        test->Say("throws");
    } else if (command.starts_with("loaded ")) {
        const std::wstring path(command.begin() + 7, command.end());
        test->Say(::GetModuleHandleW(path.c_str()) != nullptr ? "loaded yes" : "loaded no");
    } else {
        test->Say("no such command: " + command);
    }
}

} // namespace

extern "C" int wmain(int argc, wchar_t** argv);

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2) {
        return 2;
    }
    test.emplace(argv[1]);
    if (!test->IsOpen()) {
        return 3;
    }
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    const HANDLE wake = ::CreateSemaphoreW(nullptr, 0, 1000, nullptr);
    const FAKE_IMPORT(OutputDebugStringW) trace([](const wchar_t* line) {
        test->Say("trace", line);
    });
    const FAKE_IMPORT(Sleep) sleep([wake](DWORD milliseconds) {
        test->Say("sleep " + std::to_string(milliseconds));
        ::WaitForSingleObject(wake, INFINITE);
    });
    // The boot program has a window before it starts the library. In a process without one, Wine 10 may
    // hang: the first thread that uses a window class waits for one that loads a library, and that one
    // for the first.
    WNDCLASSW known = {};
    ::GetClassInfoW(nullptr, L"STATIC", &known);
    RegisterDeviceConnectCallback(OnDevice);
    StartDeviceConnectService();
    for (std::string command; test->Next(command);) {
        Obey(command, wake);
    }
    ::ExitProcess(0); // so that no destructor runs while the trackers' threads run
}
