// The search for the new device after a change, against the stand-in for still imaging.
#include "tests/support/allocation_failure.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "trackers/still_image/sti_devices.h"

#include <gmock/gmock.h>

#include <optional>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::Optional;

class NewStiDevice : public testing::Test
{
protected:
    void Plug(const std::vector<std::string>& lines) { standIns.Write("sti_devices.txt", lines); }

    void GiveTwainSource(const std::wstring& internalName, const wchar_t* source)
    {
        PutText(HKEY_LOCAL_MACHINE,
                L"SYSTEM\\CurrentControlSet\\Control\\Class\\" + internalName + L"\\DeviceData",
                L"TwainDS", source);
    }

    std::optional<std::wstring> NextNew()
    {
        const StiDeviceRecord* const device = devices.FindNewDevice();
        return device != nullptr ? std::optional<std::wstring>(device->internalName) : std::nullopt;
    }

    std::wstring NextTag()
    {
        const StiDeviceRecord* const device = devices.FindNewDevice();
        return device != nullptr ? device->twainTag : L"(no device)";
    }

    StandInFolder standIns;
    RegistrySandbox registry;
    StiDevices devices;
};

TEST_F(NewStiDevice, IsNoneThatWasPresentAtTheStart)
{
    Plug({"camera A", "scanner B"});
    ASSERT_TRUE(devices.OpenSti());
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, OpensStillImagingAsDocumented)
{
    Plug({"camera A"});
    standIns.StartLog("sti_calls.txt");
    ASSERT_TRUE(devices.OpenSti());
    EXPECT_EQ(NextNew(), std::nullopt);
    devices.Clear();
    EXPECT_THAT(standIns.Log("sti_calls.txt"),
                ElementsAre("create instance=1 version=16777218 outer=0",
                            "initialize instance=1 version=16777218", "list type=0 flags=0",
                            "list type=0 flags=0"));
}

TEST_F(NewStiDevice, IsTheOneThatWasAdded)
{
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    Plug({"scanner B", "camera A"});
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"B")));
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, IsTheFirstOfTwoAndTheOtherIsAbsorbed)
{
    ASSERT_TRUE(devices.OpenSti());
    Plug({"camera A", "camera B"});
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"A")));
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, IsNewAgainAfterItWasGone)
{
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    Plug({});
    EXPECT_EQ(NextNew(), std::nullopt);
    Plug({"camera A"});
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"A")));
}

TEST_F(NewStiDevice, IsNoneWhoseNameDiffersByLetterCaseAlone)
{
    Plug({"camera {6bdd1fc6}\\0001"});
    ASSERT_TRUE(devices.OpenSti());
    Plug({"camera {6BDD1FC6}\\0001"});
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, IsTheFirstOfAllOnceAListFailed)
{
    Plug({"camera A", "camera B"});
    ASSERT_TRUE(devices.OpenSti());
    for (const char* failure : {"fail", "other-success", "no-buffer 3", "short 1000"}) {
        Plug({failure});
        EXPECT_EQ(NextNew(), std::nullopt) << failure;
        Plug({"camera A", "camera B"});
        EXPECT_THAT(NextNew(), Optional(std::wstring(L"A"))) << failure;
        EXPECT_EQ(NextNew(), std::nullopt) << failure;
    }
}

TEST_F(NewStiDevice, IsSearchedForIfNothingIsListedYet)
{
    for (const char* nothing : {"# none", "no-buffer 0"}) {
        StiDevices other;
        Plug({nothing});
        EXPECT_TRUE(other.OpenSti()) << nothing;
        EXPECT_EQ(other.FindNewDevice(), nullptr) << nothing;
        Plug({"camera A"});
        EXPECT_NE(other.FindNewDevice(), nullptr) << nothing;
    }
}

TEST_F(NewStiDevice, LeavesNoListOfStillImagingBehind)
{
    const FAKE_IMPORT(LocalFree) frees([&](HLOCAL memory) {
        EXPECT_NE(memory, nullptr);
        return frees.CallOriginal(memory);
    });
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    EXPECT_EQ(frees.Calls(), 1);
    long lists = 1;
    for (const char* failure : {"camera A", "other-success", "short 1000"}) {
        Plug({failure});
        EXPECT_EQ(NextNew(), std::nullopt) << failure;
        EXPECT_EQ(frees.Calls(), ++lists) << failure;
    }
}

TEST_F(NewStiDevice, IsEveryDeviceOnceTheListsAreCleared)
{
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    devices.Clear();
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"A")));
}

TEST_F(NewStiDevice, LeavesNoRecordOfDevicesThatAreGone)
{
    long records = 0;
    bool noMemory = false;
    const FAKE_IMPORT(HeapAlloc) allocates([&](HANDLE heap, DWORD flags, SIZE_T size) -> void* {
        if (noMemory && records == 2) {
            return nullptr;
        }
        ++records;
        return allocates.CallOriginal(heap, flags, size);
    });
    const FAKE_IMPORT(HeapFree) frees([&](HANDLE heap, DWORD flags, void* memory) {
        --records;
        return frees.CallOriginal(heap, flags, memory);
    });
    Plug({"camera A", "camera B"});
    ASSERT_TRUE(devices.OpenSti());
    Plug({"camera C"});
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"C")));
    EXPECT_EQ(records, 1) << "the records of the present devices alone";
    noMemory = true;
    Plug({"camera C", "camera D"});
    EXPECT_THROW(static_cast<void>(devices.FindNewDevice()), std::bad_alloc);
    EXPECT_EQ(records, 2) << "the known device, and one of the unfinished list";
    devices.Clear();
    EXPECT_EQ(records, 0);
}

TEST_F(NewStiDevice, IsNeverFoundIfStillImagingCannotBeOpened)
{
    for (const char* refusal : {"refuse-create", "refuse-initialize"}) {
        StiDevices other;
        Plug({refusal});
        EXPECT_FALSE(other.OpenSti()) << refusal;
        Plug({"camera A"});
        EXPECT_EQ(other.FindNewDevice(), nullptr) << refusal;
    }
}

TEST_F(NewStiDevice, IsNeverFoundWithoutTheLibraryOrItsEntryPoint)
{
    Plug({"camera A"});
    {
        const FAKE_IMPORT(LoadLibraryW) loads([](const wchar_t* name) -> HMODULE {
            EXPECT_STREQ(name, L"sti.dll");
            return nullptr;
        });
        const FAKE_IMPORT(GetProcAddress) finds([](HMODULE, const char*) -> FARPROC {
            return nullptr;
        });
        EXPECT_FALSE(devices.OpenSti());
        EXPECT_EQ(finds.Calls(), 0) << "without a library the program itself would be searched";
    }
    const FAKE_IMPORT(GetProcAddress) finds([](HMODULE, const char* name) -> FARPROC {
        EXPECT_STREQ(name, "StiCreateInstance");
        return nullptr;
    });
    EXPECT_FALSE(devices.OpenSti());
    EXPECT_EQ(finds.Calls(), 1);
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, ReleasesStillImagingThatDoesNotInitialise)
{
    Plug({"refuse-initialize"});
    standIns.StartLog("sti_calls.txt");
    EXPECT_FALSE(devices.OpenSti());
    EXPECT_EQ(standIns.Log("sti_calls.txt").back(), "release");
}

TEST_F(NewStiDevice, CannotBeListedAtTheStartAndIsFoundLater)
{
    Plug({"fail"});
    EXPECT_FALSE(devices.OpenSti());
    Plug({"camera A"});
    EXPECT_THAT(NextNew(), Optional(std::wstring(L"A")));
}

TEST_F(NewStiDevice, WithANameThatFillsItsFieldGoesOnIntoItsCapabilities)
{
    ASSERT_TRUE(devices.OpenSti());
    const std::string name(128, 'n');
    Plug({"camera " + name});
    EXPECT_THAT(NextNew(), Optional(std::wstring(128, L'n') + L"AB"));
    Plug({"camera " + name.substr(1)});
    EXPECT_THAT(NextNew(), Optional(std::wstring(127, L'n')));
}

TEST_F(NewStiDevice, WithAListedTwainSourceIsTaggedByItsKind)
{
    standIns.Write("twain_sources.txt", {"source Fine Scan", "source WIA-Bridge"});
    for (const wchar_t* name : {L"A", L"B", L"C", L"D"}) {
        GiveTwainSource(name, L"fine scan");
    }
    ASSERT_TRUE(devices.OpenSti());
    Plug({"camera A"});
    EXPECT_EQ(NextTag(), L"C|\"fine scan\"");
    Plug({"scanner B"});
    EXPECT_EQ(NextTag(), L"S|\"fine scan\"");
    Plug({"video C"});
    EXPECT_EQ(NextTag(), L"\"fine scan\"");
    Plug({"0x00000002 D"}); // the low half is not the type
    EXPECT_EQ(NextTag(), L"\"fine scan\"");
}

TEST_F(NewStiDevice, WithoutAListedTwainSourceHasNoTag)
{
    standIns.Write("twain_sources.txt", {"source Fine Scan", "source WIA-Bridge"});
    GiveTwainSource(L"A", L"Not Installed");
    GiveTwainSource(L"B", L"WIA-Bridge");
    ASSERT_TRUE(devices.OpenSti());
    Plug({"camera A"});
    EXPECT_EQ(NextTag(), L"");
    Plug({"camera B"});
    EXPECT_EQ(NextTag(), L"");
    Plug({"camera C"});
    EXPECT_EQ(NextTag(), L"");
    GiveTwainSource(L"D", L"Fine Scan");
    standIns.Write("twain_sources.txt", {"fail-open", "source Fine Scan"});
    Plug({"camera D"});
    EXPECT_EQ(NextTag(), L"");
}

TEST_F(NewStiDevice, MoreThanAListHoldsRaisesAndKeepsTheKnownDevices)
{
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    const FAKE_IMPORT(LocalSize) size([](void*) -> SIZE_T {
        return SIZE_T{1} << 40; // the size of still imaging's answer
    });
    constexpr std::size_t kMost = StiDeviceList::kMostRecords;
    std::vector<std::string> many(kMost + 1, "camera A");
    Plug(many);
    EXPECT_THROW(static_cast<void>(devices.FindNewDevice()), std::length_error);
    Plug({"camera A"});
    EXPECT_EQ(NextNew(), std::nullopt);
}

TEST_F(NewStiDevice, IsLostWithoutMemoryAndTheKnownDevicesStay)
{
    standIns.Write("twain_sources.txt", {"source Fine Scan"});
    GiveTwainSource(L"B", L"Fine Scan");
    Plug({"camera A"});
    ASSERT_TRUE(devices.OpenSti());
    const FAKE_IMPORT(HeapAlloc) noRecord([](HANDLE, DWORD, SIZE_T) -> void* {
        return nullptr;
    });
    Plug({"camera A", "camera B"});
    EXPECT_THROW(static_cast<void>(devices.FindNewDevice()), std::bad_alloc);
    Plug({});
    EXPECT_EQ(NextNew(), std::nullopt) << "no device to make a record of";
}

} // namespace
} // namespace kestraboot::tests
