#include "tests/support/trace_recorder.h"
#include "trackers/still_image/sti_device_list.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

UniqueStiDeviceRecord Device(const wchar_t* internalName)
{
    UniqueStiDeviceRecord record = MakeStiDeviceRecord();
    CopyToField(record.get()->internalName, internalName);
    return record;
}

TEST(StiDeviceList, HoldsRecordsOfZerosUntilTheyAreFilled)
{
    const UniqueStiDeviceRecord record = MakeStiDeviceRecord();
    for (const wchar_t character : record.get()->internalName) {
        ASSERT_EQ(character, L'\0');
    }
    for (const wchar_t character : record.get()->twainTag) {
        ASSERT_EQ(character, L'\0');
    }
}

TEST(StiDeviceList, FindsANameInWhateverLetterCase)
{
    StiDeviceList list;
    list.Append(Device(L"{6BDD1FC6}\\0001"));
    EXPECT_NE(list.Find(L"{6bdd1fc6}\\0001"), nullptr);
    EXPECT_EQ(list.Find(L"{6bdd1fc6}\\000"), nullptr);
    EXPECT_EQ(list.Find(L""), nullptr);
}

TEST(StiDeviceList, NamesTheFirstRecordThatAnotherListLacks)
{
    StiDeviceList known;
    StiDeviceList current;
    EXPECT_EQ(current.FirstMissingFrom(known), nullptr);
    known.Append(Device(L"A"));
    current.Append(Device(L"a"));
    EXPECT_EQ(current.FirstMissingFrom(known), nullptr);
    current.Append(Device(L"B"));
    current.Append(Device(L"C"));
    ASSERT_NE(current.FirstMissingFrom(known), nullptr);
    EXPECT_STREQ(current.FirstMissingFrom(known)->internalName, L"B");
}

TEST(StiDeviceList, KeepsItsRecordsWhereTheyAreWhenSwapped)
{
    StiDeviceList one;
    StiDeviceList other;
    one.Append(Device(L"A"));
    const StiDeviceRecord* const record = one.Find(L"A");
    one.Swap(other);
    EXPECT_EQ(one.Count(), 0U);
    EXPECT_EQ(other.Find(L"A"), record);
}

TEST(StiDeviceList, RaisesAnExceptionInsteadOfGrowingPastItsMaximum)
{
    constexpr std::size_t kMost = 65'535;
    StiDeviceList list;
    for (std::size_t i = 0; i < kMost; ++i) {
        list.Append(Device(L"same"));
    }
    try {
        list.Append(Device(L"one too many"));
        ADD_FAILURE() << "the list grew";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "list<T> too long");
    }
    EXPECT_EQ(list.Count(), kMost);
    EXPECT_EQ(list.Find(L"one too many"), nullptr);
}

TEST(StiDeviceList, FreesEveryRecordOnce)
{
    int freed = 0;
    const FAKE_IMPORT(HeapFree) frees([&](HANDLE heap, DWORD flags, void* memory) -> BOOL {
        ++freed;
        return frees.CallOriginal(heap, flags, memory);
    });
    {
        StiDeviceList list;
        list.Append(Device(L"A"));
        list.Append(Device(L"B"));
        list.Clear();
        EXPECT_EQ(freed, 2);
        EXPECT_EQ(list.Count(), 0U);
        list.Clear();
        list.Append(Device(L"C"));
    }
    EXPECT_EQ(freed, 3);
}

TEST(StiDeviceList, WritesALineWhenFreeingRaisesAndStopsThere)
{
    const TraceRecorder trace;
    int freed = 0;
    bool raise = true;
    const FAKE_IMPORT(HeapFree) frees([&](HANDLE heap, DWORD flags, void* memory) -> BOOL {
        ++freed;
        const BOOL result = frees.CallOriginal(heap, flags, memory);
        if (freed == 2 && raise) {
            throw std::runtime_error("the heap is damaged");
        }
        return result;
    });
    StiDeviceList list;
    list.Append(Device(L"A"));
    list.Append(Device(L"B"));
    list.Append(Device(L"C"));
    list.Clear();
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><Exception raised in clean.>"));
    EXPECT_EQ(freed, 2);
    EXPECT_EQ(list.Count(), 3U) << "the rest stays listed";

    // The list stays in use: it shows no freed device, and frees none again.
    StiDeviceList nothing;
    ASSERT_NE(list.FirstMissingFrom(nothing), nullptr);
    EXPECT_STREQ(list.FirstMissingFrom(nothing)->internalName, L"C");
    EXPECT_EQ(list.Find(L"A"), nullptr);
    raise = false;
    list.Clear();
    EXPECT_EQ(freed, 3);
    EXPECT_EQ(list.Count(), 0U);
    EXPECT_EQ(trace.Lines().size(), 1U);
}

} // namespace
} // namespace kestraboot::tests
