// A host process for the system tests. It loads the shipped kestraboot.dll, starts the service, and
// reports the events to its parent.
//
// It writes to standard output, a line each: "trace TEXT", "sleep MILLISECONDS" (the library waits until
// a command wakes it), "device KIND ID", and the answers. It reads from standard input: "wake" ends one
// wait; "loaded PATH" answers "loaded yes" or "loaded no"; "throw" makes the next report throw; "quit"
// makes the process exit.
#include "kestraboot/device_connect.h"
#include "tests/support/import_patch.h"

#include <windows.h>
#include <atomic>
#include <iostream>
#include <mutex>
#include <new>
#include <string>

namespace
{

using kestraboot::tests::SetModuleUnderTest;

std::mutex outputLock;
std::atomic<bool> throwNext = false;

std::string Narrow(const std::wstring& text)
{
    return {text.begin(), text.end()}; // the tests' own texts are ASCII
}

void Say(const std::string& line)
{
    const std::lock_guard lock(outputLock);
    std::cout << line << '\n' << std::flush;
}

void OnDevice(std::wstring& kind, std::wstring& deviceId)
{
    Say("device " + Narrow(kind) + " " + Narrow(deviceId));
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
        Say("throws");
    } else if (command.starts_with("loaded ")) {
        const std::wstring path(command.begin() + 7, command.end());
        Say(::GetModuleHandleW(path.c_str()) != nullptr ? "loaded yes" : "loaded no");
    } else {
        Say("no such command: " + command);
    }
}

} // namespace

int main()
{
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    const HANDLE wake = ::CreateSemaphoreW(nullptr, 0, 1000, nullptr);
    const FAKE_IMPORT(OutputDebugStringW) trace([](const wchar_t* line) {
        Say("trace " + Narrow(line));
    });
    const FAKE_IMPORT(Sleep) sleep([wake](DWORD milliseconds) {
        Say("sleep " + std::to_string(milliseconds));
        ::WaitForSingleObject(wake, INFINITE);
    });
    RegisterDeviceConnectCallback(OnDevice);
    StartDeviceConnectService();
    for (std::string command; std::getline(std::cin, command) && command != "quit";) {
        Obey(command, wake);
    }
    ::ExitProcess(0); // so that no destructor runs while the trackers' threads run
}
