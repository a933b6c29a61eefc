#include "tests/endurance/fuzz/launch_recorder.h"

namespace kestraboot::fuzz
{

LaunchRecorder::LaunchRecorder()
    : version([this](OSVERSIONINFOW* record) -> BOOL {
          const bool extended = record->dwOSVersionInfoSize == sizeof(OSVERSIONINFOEXW);
          if (machine.failingForms > (extended ? 0 : 1)) {
              return FALSE;
          }
          record->dwMajorVersion = machine.major;
          record->dwMinorVersion = machine.minor;
          record->dwPlatformId = machine.platform;
          if (extended) {
              reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = machine.product;
          }
          return TRUE;
      }),
      session([this](DWORD, DWORD* id) -> BOOL {
          *id = ::WTSGetActiveConsoleSessionId() + (machine.inConsoleSession ? 0 : 1);
          return machine.sessionKnown ? TRUE : FALSE;
      })
{
}

void LaunchRecorder::Reset(const Machine& runningOn)
{
    machine = runningOn;
    spawns.Clear();
    trace.Clear();
}

Machine AnyMachine(Random& random)
{
    Machine machine;
    machine.major = random.Pick<DWORD>({5, 5, 6, 6, 4, 10});
    machine.minor = random.Pick<DWORD>({0, 0, 1, 1, 2});
    machine.product = random.Pick<BYTE>({VER_NT_WORKSTATION, VER_NT_WORKSTATION, VER_NT_SERVER, 0});
    machine.platform = random.Chance(90) ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS;
    machine.failingForms = random.Pick({0, 0, 0, 0, 0, 1, 1, 2});
    machine.sessionKnown = random.Chance(90);
    machine.inConsoleSession = random.Chance(60);
    return machine;
}

} // namespace kestraboot::fuzz
