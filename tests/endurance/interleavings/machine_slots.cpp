#include "tests/endurance/interleavings/machine.h"

#include <cwchar>

namespace kestraboot::interleavings
{
namespace
{

Scheduler& InScene()
{
    return *Scheduler::Running();
}

// In a scene the machine answers, and elsewhere Windows does.
#define IN_SCENE(slot, ...)                                                                             \
    if (Scheduler::Running() == nullptr) {                                                              \
        return slot.CallOriginal(__VA_ARGS__);                                                          \
    }

// The same for a library of the machine; any other is Windows'.
#define IN_SCENE_FOR(library, slot, ...)                                                                \
    if (Scheduler::Running() == nullptr || !Machine::Current().Has(library)) {                          \
        return slot.CallOriginal(__VA_ARGS__);                                                          \
    }

} // namespace

MachineInSlots::MachineInSlots()
    : enter([this](LPCRITICAL_SECTION lock) {
          IN_SCENE(enter, lock)
          Machine::Current().Take(lock, true);
      }),
      leave([this](LPCRITICAL_SECTION lock) {
          IN_SCENE(leave, lock)
          Machine::Current().Give(lock);
      }),
      make([this](LPCRITICAL_SECTION lock) {
          make.CallOriginal(lock);
          if (Scheduler::Running() != nullptr) {
              Machine::Current().Made(lock);
          }
      }),
      remove([this](LPCRITICAL_SECTION lock) {
          if (Scheduler::Running() != nullptr) {
              Machine::Current().Deleted(lock);
          }
          remove.CallOriginal(lock);
      }),
      acquire([this](PSRWLOCK lock) {
          IN_SCENE(acquire, lock)
          Machine::Current().Take(lock, false);
      }),
      release([this](PSRWLOCK lock) {
          IN_SCENE(release, lock)
          Machine::Current().Give(lock);
      }),
      errorMode([this](UINT mode) -> UINT {
          IN_SCENE(errorMode, mode)
          return Machine::Current().SetErrorMode(mode);
      }),
      output([this](const wchar_t* line) {
          IN_SCENE(output, line)
          InScene().Point("traces " + Narrow(line));
          Machine::Current().traced.emplace_back(line);
      }),
      thread([this](LPSECURITY_ATTRIBUTES attributes, SIZE_T stack, LPTHREAD_START_ROUTINE start,
                    LPVOID argument, DWORD flags, LPDWORD id) -> HANDLE {
          IN_SCENE(thread, attributes, stack, start, argument, flags, id)
          const int number = InScene().Start("thread started", [start, argument] {
              start(argument);
          });
          InScene().Point("has started a thread");
          return reinterpret_cast<HANDLE>(static_cast<INT_PTR>(number + 1));
      }),
      sleep([this](DWORD milliseconds) {
          IN_SCENE(sleep, milliseconds)
          InScene().Point("sleeps");
      }),
      test([this](const wchar_t* path, HANDLE file, DWORD flags) -> HMODULE {
          IN_SCENE_FOR(path, test, path, file, flags)
          return Machine::Current().Load("LoadLibraryExW", path);
      }),
      load([this](const wchar_t* path) -> HMODULE {
          IN_SCENE_FOR(path, load, path)
          return Machine::Current().Load("LoadLibraryW", path);
      }),
      loaded([this](const wchar_t* path) -> HMODULE {
          IN_SCENE_FOR(path, loaded, path)
          InScene().Point("GetModuleHandleW " + Narrow(path));
          Library& library = Machine::Current().libraries.at(path);
          return library.loads > 0 ? reinterpret_cast<HMODULE>(&library) : nullptr;
      }),
      address([this](HMODULE module, const char* name) -> FARPROC {
          IN_SCENE_FOR(module, address, module, name)
          return reinterpret_cast<FARPROC>(
              reinterpret_cast<void*>(reinterpret_cast<const Library*>(module)->entry));
      }),
      unload([this](HMODULE module) -> BOOL {
          IN_SCENE_FOR(module, unload, module)
          Machine::Current().Free(module);
          return TRUE;
      }),
      makeWindow([this](DWORD extended, const wchar_t* kind, const wchar_t* name, DWORD style, int x,
                        int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID argument) -> HWND {
          IN_SCENE(makeWindow, extended, kind, name, style, x, y, width, height, parent, menu, instance,
                   argument)
          InScene().Point("makes a window");
          return reinterpret_cast<HWND>(0x1000);
      }),
      destroyWindow([this](HWND window) -> BOOL {
          IN_SCENE(destroyWindow, window)
          return TRUE;
      }),
      message([this](LPMSG got, HWND window, UINT least, UINT most) -> BOOL {
          IN_SCENE(message, got, window, least, most)
          InScene().Point("is asked to quit"); // at any time
          return FALSE;
      }),
      drives([this]() -> DWORD {
          IN_SCENE(drives)
          InScene().Point("GetLogicalDrives");
          return Machine::Current().cardThere ? 1U << ('E' - 'A') : 0;
      }),
      type([this](const wchar_t* root) -> UINT {
          IN_SCENE(type, root)
          Machine::Current().NeedsNoBoxes("GetDriveTypeW", SEM_FAILCRITICALERRORS);
          return DRIVE_REMOVABLE;
      }),
      volume([this](const wchar_t* root, wchar_t* name, DWORD nameSize, DWORD* serial, DWORD* length,
                    DWORD* flags, wchar_t* fileSystem, DWORD fileSystemSize) -> BOOL {
          IN_SCENE(volume, root, name, nameSize, serial, length, flags, fileSystem, fileSystemSize)
          Machine::Current().NeedsNoBoxes("GetVolumeInformationW", SEM_FAILCRITICALERRORS);
          return TRUE;
      }),
      isFolder([this](const wchar_t* path) -> BOOL {
          IN_SCENE(isFolder, path)
          return TRUE;
      }),
      exists([this](const wchar_t* path) -> BOOL {
          IN_SCENE(exists, path)
          return TRUE;
      }),
      process([this](DWORD access, BOOL inherited, DWORD id) -> HANDLE {
          IN_SCENE(process, access, inherited, id)
          return nullptr; // so no application is this program: to determine it takes most of the time
      }),
      first([this](const wchar_t* pattern, LPWIN32_FIND_DATAW found) -> HANDLE {
          IN_SCENE(first, pattern, found)
          *found = {};
          const std::wstring folder = pattern;
          if (folder.ends_with(L".mox")) { // the folder of plugins, which holds all libraries
              InScene().Point("FindFirstFileW");
          } else {
              Machine::Current().NeedsNoBoxes("FindFirstFileW", SEM_FAILCRITICALERRORS);
          }
          std::wcscpy(found->cFileName, folder.ends_with(L".mox") ? L"nokiamanager.mox" : L"IMG_1.JPG");
          return reinterpret_cast<HANDLE>(0x2000);
      }),
      next([this](HANDLE search, LPWIN32_FIND_DATAW found) -> BOOL {
          IN_SCENE(next, search, found)
          InScene().Point("FindNextFileW");
          const bool isFirst = std::wcscmp(found->cFileName, L"nokiamanager.mox") == 0;
          std::wcscpy(found->cFileName, L"other.mox");
          return isFirst ? TRUE : FALSE;
      }),
      close([this](HANDLE search) -> BOOL {
          IN_SCENE(close, search)
          return TRUE;
      })
{
}

} // namespace kestraboot::interleavings
