#pragma once

#include "foundation/handles.h"
#include "trackers/still_image/twain_source.h"

#include <windows.h>
#include <cstddef>
#include <list>

namespace kestraboot
{

/// One still-image device that the system lists.
struct StiDeviceRecord {
    TextField internalName; ///< its name in still imaging
    /// Empty unless the device has a TWAIN data source that can be used. Then "C|" (a camera), "S|"
    /// (a scanner) or nothing, and the source's name in double quotes, cut at 259 characters.
    TextField twainTag;
};

struct StiDeviceRecordTraits {
    using Resource = StiDeviceRecord*;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource record) noexcept { ::HeapFree(::GetProcessHeap(), 0, record); }
};

using UniqueStiDeviceRecord = UniqueResource<StiDeviceRecordTraits>;

/// A record of zeros from the process heap. Throws std::bad_alloc.
[[nodiscard]] UniqueStiDeviceRecord MakeStiDeviceRecord();

/// Owns the records of one enumeration, in its order.
class StiDeviceList
{
public:
    /// More than any machine has: bounds the memory that a faulty list can take.
    static constexpr std::size_t kMostRecords = 65'535;

    StiDeviceList() noexcept = default;
    StiDeviceList(const StiDeviceList&) = delete;
    StiDeviceList& operator=(const StiDeviceList&) = delete;
    ~StiDeviceList() { Clear(); }

    /// Throws std::length_error past kMostRecords, and std::bad_alloc without memory; the list is
    /// then unchanged.
    void Append(UniqueStiDeviceRecord record);

    /// Frees all records, then the list. If anything raises an exception, writes a trace line and
    /// stops: records that are not freed yet stay listed, and the next Clear tries again.
    void Clear() noexcept;

    /// The record with that internal name, in any case; null if there is none.
    [[nodiscard]] const StiDeviceRecord* Find(const wchar_t* internalName) const noexcept;

    /// The first record, in order, whose internal name `known` does not contain; null if there is
    /// none.
    [[nodiscard]] const StiDeviceRecord* FirstMissingFrom(const StiDeviceList& known) const noexcept;

    [[nodiscard]] std::size_t Count() const noexcept { return records.size(); }

    /// Records keep their addresses.
    void Swap(StiDeviceList& other) noexcept { records.swap(other.records); }

private:
    std::list<StiDeviceRecord*> records; ///< null where freeing a record raised an exception
};

} // namespace kestraboot
