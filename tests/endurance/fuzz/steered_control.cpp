#include "tests/endurance/fuzz/steered_control.h"

#include "kestraboot/command_handler.h"
#include "tests/support/sample_application.h"

namespace kestraboot::fuzz
{

SteeredControl::SteeredControl()
    : mutex([this](SECURITY_ATTRIBUTES*, BOOL, const wchar_t*) -> HANDLE {
          ::SetLastError(surroundings.claimExisted ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
          return Claim();
      }),
      close([this](HANDLE handle) -> BOOL {
          if (handle != Claim()) {
              return close.CallOriginal(handle);
          }
          closed = true;
          return TRUE;
      }),
      modules([](HANDLE, HMODULE* first, DWORD, DWORD* needed) -> BOOL {
          *first = nullptr;
          *needed = sizeof *first;
          return TRUE;
      }),
      moduleName([this](HANDLE, HMODULE, wchar_t* path, DWORD room) -> DWORD {
          return static_cast<DWORD>(surroundings.executable.copy(path, room));
      })
{
}

void SteeredControl::Become(const Surroundings& wanted)
{
    surroundings = wanted;
    closed = false;
    folder.clear();
    recorder.Reset({});
    Hive machine;
    if (wanted.organiserInstalled) {
        machine.Make(tests::kOrganiserKey).PutText(L"", L"C:\\Legacy");
    }
    registry.Become(machine, {});
}

Control SteeredControl::Take()
{
    const bool taken = CKestraBootCommandHandler().TakeControl();
    return {taken, closed, folder, recorder.Seen()};
}

HANDLE SteeredControl::Claim() const
{
    return surroundings.claimCreated ? reinterpret_cast<HANDLE>(std::uintptr_t{0xC1A1}) : nullptr;
}

} // namespace kestraboot::fuzz
