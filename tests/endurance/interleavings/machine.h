// The Windows of a scene: locks, threads, the error mode, libraries, windows, one card. It is in the
// import slots of the module under test; outside of a scene the slots answer as usual.
#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/endurance/interleavings/scheduler.h"
#include "tests/support/import_patch.h"

#include <windows.h>
#include <map>
#include <shlwapi.h>
#include <string>
#include <vector>

namespace kestraboot::interleavings
{

/// A library that plugins are loaded from, and its entry point's action.
struct Library {
    mox::PluginMain entry;
    int loads = 0;
};

/// The state of Windows in one schedule. Made by the scene, one at a time.
class Machine
{
public:
    Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    ~Machine();

    [[nodiscard]] static Machine& Current() noexcept;

    void Take(const void* lock, bool recursive);
    void Give(const void* lock);
    void Made(const void* lock);
    void Deleted(const void* lock);

    [[nodiscard]] UINT SetErrorMode(UINT mode);
    /// An operation that would open a box, unless these flags are in force.
    void NeedsNoBoxes(const std::string& operation, UINT flags);

    [[nodiscard]] int LocksDeleted() const;

    [[nodiscard]] bool Has(const wchar_t* path) const { return libraries.count(path) != 0; }
    [[nodiscard]] bool Has(HMODULE module) const;
    [[nodiscard]] HMODULE Load(const std::string& operation, const wchar_t* path);
    void Free(HMODULE module);

    /// The error that a scene left behind, or an empty text.
    [[nodiscard]] std::string Check() const;

    static constexpr UINT kModeOfTheHost = SEM_NOGPFAULTERRORBOX;
    std::map<std::wstring, Library> libraries; ///< by path
    std::vector<std::wstring> traced;
    bool cardThere = false; ///< in E:, with a picture

private:
    struct Lock {
        int number = 0;
        int owner = -1;
        int count = 0;
        bool deleted = false;
    };
    Lock& Of(const void* lock);

    UINT errorMode = kModeOfTheHost;
    std::map<const void*, Lock> locks;
};

/// For the list of operations.
[[nodiscard]] std::string Narrow(const std::wstring& text);

/// Replaces the import slots by the machine of the scene while it lives.
class MachineInSlots
{
public:
    MachineInSlots();

private:
    FAKE_IMPORT(EnterCriticalSection) enter;
    FAKE_IMPORT(LeaveCriticalSection) leave;
    FAKE_IMPORT(InitializeCriticalSection) make;
    FAKE_IMPORT(DeleteCriticalSection) remove;
    FAKE_IMPORT(AcquireSRWLockExclusive) acquire;
    FAKE_IMPORT(ReleaseSRWLockExclusive) release;
    FAKE_IMPORT(SetErrorMode) errorMode;
    FAKE_IMPORT(OutputDebugStringW) output;
    FAKE_IMPORT(CreateThread) thread;
    FAKE_IMPORT(Sleep) sleep;

    FAKE_IMPORT(LoadLibraryExW) test;
    FAKE_IMPORT(LoadLibraryW) load;
    FAKE_IMPORT(GetModuleHandleW) loaded;
    FAKE_IMPORT(GetProcAddress) address;
    FAKE_IMPORT(FreeLibrary) unload;

    FAKE_IMPORT(CreateWindowExW) makeWindow;
    FAKE_IMPORT(DestroyWindow) destroyWindow;
    FAKE_IMPORT(GetMessageW) message;

    FAKE_IMPORT(GetLogicalDrives) drives;
    FAKE_IMPORT(GetDriveTypeW) type;
    FAKE_IMPORT(GetVolumeInformationW) volume;
    FAKE_IMPORT(PathIsDirectoryW) isFolder;
    FAKE_IMPORT(PathFileExistsW) exists;
    FAKE_IMPORT(OpenProcess) process;
    FAKE_IMPORT(FindFirstFileW) first;
    FAKE_IMPORT(FindNextFileW) next;
    FAKE_IMPORT(FindClose) close;
};

} // namespace kestraboot::interleavings
