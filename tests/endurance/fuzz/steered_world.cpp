#include "tests/endurance/fuzz/steered_world.h"

namespace kestraboot::fuzz
{

SteeredWorld::SteeredWorld()
    : exists([this](const wchar_t* path) -> BOOL {
          return world->files.contains(path) ? TRUE : FALSE;
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
}

void SteeredWorld::Become(const World& wanted, const Machine& runningOn)
{
    world = &wanted;
    recorder.Reset(runningOn);
    Empty(HKEY_LOCAL_MACHINE);
    Empty(HKEY_CURRENT_USER);
    wanted.machine.StoreBelow(HKEY_LOCAL_MACHINE);
    wanted.user.StoreBelow(HKEY_CURRENT_USER);
}

} // namespace kestraboot::fuzz
