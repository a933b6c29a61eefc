#include "tests/endurance/fuzz/steered_world.h"

namespace kestraboot::fuzz
{

SteeredWorld::SteeredWorld(Keys keys)
    : exists([this](const wchar_t* path) -> BOOL {
          return world->files.contains(path) ? TRUE : FALSE;
      }),
      modules([this](HANDLE, HMODULE* first, DWORD, DWORD* needed) -> BOOL {
          *first = nullptr;
          *needed = sizeof *first;
          return world->self.empty() ? FALSE : TRUE; // a process that cannot look into itself
      }),
      moduleName([this](HANDLE, HMODULE, wchar_t* path, DWORD capacity) -> DWORD {
          return static_cast<DWORD>(world->self.copy(path, capacity));
      }),
      exit([](UINT exitCode) {
          if (exitCode == 0) {
              throw ProcessEnded();
          }
      })
{
    if (keys == Keys::Real) {
        sandbox.emplace();
    } else {
        registry.emplace();
    }
}

void SteeredWorld::Become(const World& wanted, const Machine& runningOn)
{
    world = &wanted;
    recorder.Reset(runningOn);
    if (registry) {
        registry->Become(wanted.machine, wanted.user);
        registry->isAdministrators = wanted.isAdministrators;
        return;
    }
    Empty(HKEY_LOCAL_MACHINE);
    Empty(HKEY_CURRENT_USER);
    wanted.machine.StoreBelow(HKEY_LOCAL_MACHINE);
    wanted.user.StoreBelow(HKEY_CURRENT_USER);
}

std::vector<std::wstring> SteeredWorld::MachineLines() const
{
    return registry ? registry->machine.Lines() : StoredLines(HKEY_LOCAL_MACHINE);
}

std::vector<std::wstring> SteeredWorld::UserLines() const
{
    return registry ? registry->user.Lines() : StoredLines(HKEY_CURRENT_USER);
}

} // namespace kestraboot::fuzz
