// Device records of plugins: the reports of them. No byte outside of a record is read.
#include "kestraboot/device_connect.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/guarded_memory.h"
#include "tests/support/recorded_events.h"
#include "trackers/mox/callback_interface.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestraboot::fuzz
{
namespace
{

using Events = std::vector<tests::RecordedEvents::Event>;

mox::DeviceRecord AnyRecord(Random& random)
{
    mox::DeviceRecord record;
    std::memset(&record, random.Pick({0, 0xFF, 0x41}), sizeof record);
    record.eventCode = random.Pick({0U, 0U, 0U, 0U, 0U, 1U, 0x100U, 0x80000000U});
    record.size =
        random.Pick({3656U, 3656U, 3656U, 3656U, 3656U, 3652U, 3657U, 0U, 0xFFFFFFFFU, 0x10E48U});
    record.deviceKind = static_cast<std::uint32_t>(random.Below(12));
    if (random.Chance(10)) {
        record.deviceKind = random.Pick({0x80000002U, 0x10002U, 255U, 0xFFFFFFFFU});
    }
    if (random.Chance(30)) {
        record.deviceKind = 2;
    }
    record.mobileReady = random.Pick({1U, 1U, 1U, 0U, 2U, 0x101U, 0xFFFFFFFFU});
    const std::wstring id = random.Chance(20) ? random.TextOf(random.Between(255, 260)) : random.Text();
    if (random.Chance(90)) {
        id.copy(record.deviceId, 260);
        if (id.size() < 260) {
            record.deviceId[id.size()] = L'\0';
        }
    }
    return record;
}

Events ModelOfNotification(const mox::DeviceRecord& record)
{
    static constexpr const wchar_t* kWords[] = {L"unknown", L"camera", L"mobile", L"scanner",
                                                L"video",   L"audio",  L"volume", L"archive"};
    if (record.eventCode != 0 || record.size != 3656 ||
        (record.deviceKind == 2 && record.mobileReady != 1)) {
        return {};
    }
    std::wstring id;
    for (std::size_t i = 0; i < 259 && record.deviceId[i] != L'\0'; ++i) {
        id += record.deviceId[i];
    }
    return {{record.deviceKind < 8 ? kWords[record.deviceKind] : L"unknown", id}};
}

TEST(DeviceRecordFuzz, IsReportedOrNotAsTheModelSays)
{
    tests::RecordedEvents events;
    GuardedMemory memory;
    CMOXCallbackInterface callback;
    Fuzz({.usual = 20'000}, [&](Random& random) {
        const mox::DeviceRecord record = AnyRecord(random);
        // A record that claims a smaller size may well be smaller.
        const std::size_t size = record.eventCode == 0 && record.size == 3656
                                     ? sizeof record
                                     : random.Between(12, 3655) & ~3U;
        const void* const given = memory.Put(&record, size);
        events.Clear();

        const mox::Status status =
            callback.Notify(random.Bits(), static_cast<const mox::DeviceRecord*>(given));

        EXPECT_EQ(status, mox::kSuccess);
        EXPECT_EQ(events.All(), ModelOfNotification(record))
            << "event " << record.eventCode << ", size " << record.size << ", kind " << record.deviceKind
            << ", ready " << record.mobileReady;
        EXPECT_EQ(std::memcmp(given, &record, size), 0);
    });
}

int thrown = 0;

TEST(DeviceRecordFuzz, IsAcceptedFromAnyPluginIfTheHostThrows)
{
    const tests::RecordedEvents dispatch; // makes the dispatch's lock, and leaves no callback behind
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring& id) {
        if (++thrown % 2 != 0) {
            throw std::runtime_error("host");
        }
        throw id.size();
    });
    CMOXCallbackInterface callback;
    Fuzz({.usual = 500, .share = 10}, [&](Random& random) {
        const mox::DeviceRecord record = AnyRecord(random);
        const int before = thrown;
        EXPECT_EQ(callback.Notify(0, &record), mox::kSuccess);
        EXPECT_EQ(thrown - before, static_cast<int>(ModelOfNotification(record).size()));
    });
}

} // namespace
} // namespace kestraboot::fuzz
