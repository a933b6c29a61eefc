#pragma once

#include "tests/endurance/fuzz/imaging_model.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <set>
#include <sti.h>

namespace kestraboot::fuzz
{

/// Still imaging and the TWAIN source manager inside the test's own process. One at a time.
class SteeredStillImaging
{
public:
    SteeredStillImaging();
    SteeredStillImaging(const SteeredStillImaging&) = delete;
    SteeredStillImaging& operator=(const SteeredStillImaging&) = delete;
    ~SteeredStillImaging();

    /// Both must live as long as they are asked.
    void Become(const StillWorld& wanted);
    void List(const StillListing& wanted) { listing = &wanted; }

    HRESULT GetDeviceList(DWORD* count, void** buffer);
    HRESULT Create(IStillImageW** created) const;
    [[nodiscard]] HRESULT Initialize() const { return world->initialize; }
    unsigned short AskTwain(unsigned short message, void* data);

    /// Lists that were not freed, and the rest of TWAIN sessions.
    std::set<void*> lists;
    int windows = 0;
    int libraries = 0;
    int sessions = 0;

    static SteeredStillImaging* Current() noexcept { return current; }

private:
    static inline SteeredStillImaging* current = nullptr;
    const StillWorld* world = nullptr;
    const StillListing* listing = nullptr;
    std::size_t nextSource = 0;
    FAKE_IMPORT(LoadLibraryW) load;
    FAKE_IMPORT(GetProcAddress) address;
    FAKE_IMPORT(FreeLibrary) unload;
    FAKE_IMPORT(LocalFree) freeList;
    FAKE_IMPORT(CreateWindowExW) createWindow;
    FAKE_IMPORT(DestroyWindow) destroyWindow;
};

} // namespace kestraboot::fuzz
