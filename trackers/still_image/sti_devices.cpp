#include "trackers/still_image/sti_devices.h"

#include "foundation/com_pointer.h"
#include "trackers/still_image/sti_device_record.h"

#include <cstdint>

namespace kestraboot
{
namespace
{

constexpr DWORD kStiVersion = 0x01000002; // STI_VERSION of sti.h with its Unicode flag
static_assert(kStiVersion == (STI_VERSION_REAL | STI_VERSION_FLAG_UNICODE));

constexpr DWORD kAllTypes = 0; // the parameter of GetDeviceList
constexpr DWORD kNoFlags = 0;  // attached or not

struct LocalMemoryTraits {
    using Resource = void*;
    static Resource Invalid() noexcept { return {}; }
    static void Close(Resource memory) noexcept { ::LocalFree(memory); }
};

using UniqueLocalMemory = UniqueResource<LocalMemoryTraits>;

using UniqueStillImage = UniqueComPointer<IStillImageW>;

UniqueStillImage CreateStillImage() noexcept
{
    using CreateInstance =
        HRESULT(WINAPI*)(HINSTANCE instance, DWORD version, IStillImageW * *created, IUnknown * outer);
    const HMODULE library = ::LoadLibraryW(L"sti.dll"); // never freed: its object stays in use
    if (library == nullptr) {
        return {};
    }
    const FARPROC entry = ::GetProcAddress(library, "StiCreateInstance");
    if (entry == nullptr) {
        return {};
    }
    IStillImageW* created = nullptr;
    const HRESULT result = reinterpret_cast<CreateInstance>(reinterpret_cast<void*>(entry))(
        ::GetModuleHandleW(nullptr), kStiVersion, &created, nullptr);
    UniqueStillImage stillImage(created);
    if (FAILED(result)) {
        stillImage.reset();
    }
    return stillImage;
}

/// Whether the memory that still imaging returned holds as many records as it claims.
bool HoldsRecords(const UniqueLocalMemory& memory, DWORD count) noexcept
{
    const std::uint64_t needed = std::uint64_t{count} * sizeof(STI_DEVICE_INFORMATIONW);
    return count == 0 || (memory && ::LocalSize(memory.get()) >= needed);
}

} // namespace

bool StiDevices::OpenSti()
{
    UniqueStillImage created = CreateStillImage();
    if (!created || FAILED(created.get()->Initialize(::GetModuleHandleW(nullptr), kStiVersion))) {
        return false;
    }
    stillImage = created.release();
    return EnumerateStiDevices(knownDevices);
}

bool StiDevices::EnumerateStiDevices(StiDeviceList& devices) const
{
    if (stillImage == nullptr) {
        return false;
    }
    DWORD count = 0;
    void* buffer = nullptr;
    const HRESULT result = stillImage->GetDeviceList(kAllTypes, kNoFlags, &count, &buffer);
    const UniqueLocalMemory memory(buffer);
    if (result != S_OK || !HoldsRecords(memory, count)) {
        return false;
    }
    const auto* const listed = static_cast<const STI_DEVICE_INFORMATIONW*>(memory.get());
    for (DWORD i = 0; i < count; ++i) {
        devices.Append(ReadStiDevice(listed[i]));
    }
    return true;
}

const StiDeviceRecord* StiDevices::FindNewDevice()
{
    currentDevices.Clear();
    static_cast<void>(EnumerateStiDevices(currentDevices)); // failed: no device counts as present
    const StiDeviceRecord* const newDevice = currentDevices.FirstMissingFrom(knownDevices);
    knownDevices.Clear();
    knownDevices.Swap(currentDevices);
    return newDevice;
}

void StiDevices::Clear() noexcept
{
    knownDevices.Clear();
    currentDevices.Clear();
}

} // namespace kestraboot
