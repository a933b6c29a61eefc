#include "trackers/still_image/sti_device_list.h"

#include <cwchar>
#include <new>
#include <stdexcept>
#include <utility>

namespace kestraboot
{

UniqueStiDeviceRecord MakeStiDeviceRecord()
{
    void* const memory = ::HeapAlloc(::GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(StiDeviceRecord));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return UniqueStiDeviceRecord(new (memory) StiDeviceRecord{});
}

void StiDeviceList::Append(UniqueStiDeviceRecord record)
{
    if (records.size() >= kMostRecords) {
        throw std::length_error("list<T> too long");
    }
    records.push_back(record.get());
    static_cast<void>(record.release()); // the list owns it from here on
}

void StiDeviceList::Clear() noexcept
{
    try {
        for (StiDeviceRecord*& record : records) {
            // Without the owner, which would end the process if this threw. The record is removed
            // from the list first, so that no later Clear frees it again.
            StiDeviceRecord* const freed = std::exchange(record, nullptr);
            if (freed != nullptr) {
                ::HeapFree(::GetProcessHeap(), 0, freed);
            }
        }
    } catch (...) {
        ::OutputDebugStringW(L"<***DeviceConnect***><StiTracker><Exception raised in clean.>");
        return;
    }
    records.clear();
}

const StiDeviceRecord* StiDeviceList::Find(const wchar_t* internalName) const noexcept
{
    for (const StiDeviceRecord* const record : records) {
        if (record != nullptr && _wcsicmp(record->internalName, internalName) == 0) {
            return record;
        }
    }
    return nullptr;
}

const StiDeviceRecord* StiDeviceList::FirstMissingFrom(const StiDeviceList& known) const noexcept
{
    for (const StiDeviceRecord* const record : records) {
        if (record != nullptr && known.Find(record->internalName) == nullptr) {
            return record;
        }
    }
    return nullptr;
}

} // namespace kestraboot
