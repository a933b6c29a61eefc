// The start of the service, and the road from a card to the host's callback: the thread starts, a card
// arrives, and two more polls detect nothing new.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/trackers.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <thread>

namespace kestraboot::tests
{
namespace
{

const HANDLE kListing = reinterpret_cast<HANDLE>(std::uintptr_t{0x715});
constexpr int kLooks = 3;

bool cardIsIn = false;
bool cardComes = false;
bool isMakersDisk = false; ///< E: is a fixed disk with the file system of the camera's maker
int looks = 0;
int openListings = 0;
bool inPictureFolder = false;
ULONGLONG now = 0;

DWORD ListDrives() noexcept
{
    return 1U << 2 | (cardIsIn ? 1U << 4 : 0U); // C:, and E: with the card
}

UINT DriveKind(const wchar_t* root) noexcept
{
    return root[0] == L'E' && !isMakersDisk ? DRIVE_REMOVABLE : DRIVE_FIXED;
}

BOOL ReadVolume(const wchar_t* root, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t* fileSystem,
                DWORD capacity) noexcept
{
    if (fileSystem != nullptr) {
        std::wcsncpy(fileSystem, isMakersDisk ? L"KODAK1.0" : L"FAT", capacity);
    }
    return root[0] == L'E' ? cardIsIn : TRUE;
}

void Fill(WIN32_FIND_DATAW& entry, const wchar_t* name, DWORD attributes) noexcept
{
    entry = {};
    entry.dwFileAttributes = attributes;
    std::wcscpy(entry.cFileName, name);
}

// Names so long that their trace lines are cut.
const std::wstring kNotes = std::wstring(240, L'n') + L".txt";
const std::wstring kPictures = L"DCIM" + std::wstring(236, L'd');

/// E:\nnn...nnn.txt and E:\DCIMddd...ddd\IMG_1.JPG.
HANDLE ListFirst(const wchar_t* pattern, WIN32_FIND_DATAW* entry) noexcept
{
    inPictureFolder = std::wcsstr(pattern, L"DCIM") != nullptr;
    Fill(*entry, inPictureFolder ? L"IMG_1.JPG" : kNotes.c_str(), FILE_ATTRIBUTE_NORMAL);
    ++openListings;
    return kListing;
}

BOOL ListNext(HANDLE, WIN32_FIND_DATAW* entry) noexcept
{
    const bool more = !inPictureFolder && entry->cFileName == kNotes;
    if (more) {
        Fill(*entry, kPictures.c_str(), FILE_ATTRIBUTE_DIRECTORY);
    }
    return more;
}

BOOL EndListing(HANDLE listing) noexcept
{
    openListings -= listing == kListing ? 1 : 0;
    return listing == kListing;
}

ULONGLONG Time() noexcept
{
    return now;
}

BOOL LookForMessage(MSG*, HWND, UINT, UINT, UINT) noexcept
{
    cardIsIn = cardComes;
    return looks++ >= kLooks;
}

DWORD AwaitAnything(DWORD, const HANDLE*, DWORD milliseconds, DWORD, DWORD) noexcept
{
    now += milliseconds; // no event comes
    return WAIT_TIMEOUT;
}

BOOL TakeMessage(MSG*, HWND, UINT, UINT) noexcept
{
    return FALSE; // the end
}

struct DrivePatches {
    ImportPatch drives{"GetLogicalDrives", ListDrives};
    ImportPatch kind{"GetDriveTypeW", DriveKind};
    ImportPatch volume{"GetVolumeInformationW", ReadVolume};
    ImportPatch first{"FindFirstFileW", ListFirst};
    ImportPatch next{"FindNextFileW", ListNext};
    ImportPatch close{"FindClose", EndListing};
    ImportPatch time{"GetTickCount64", Time};
    ImportPatch peek{"PeekMessageW", LookForMessage};
    ImportPatch wait{"MsgWaitForMultipleObjectsEx", AwaitAnything};
    ImportPatch get{"GetMessageW", TakeMessage};
};

class CardAct final : public Act
{
public:
    explicit CardAct(Machine& where) : machine(where) {}

    /// Polls without the card, so that the tracker forgets its earlier knowledge.
    void Prepare() override
    {
        machine.Restore();
        std::thread([] {
            RunTracker(false);
        }).join();
        ::UnregisterClassW(L"DeviceDetectWin", ::GetModuleHandleW(nullptr));
        openListings = 0;
    }

    void Run() override
    {
        const Armed armed;
        RunTracker(true);
    }

    void ShowResults() override
    {
        if (openListings != 0) {
            Journal::AddNumber(L"LEFT BEHIND listings", openListings);
        }
        machine.ShowStored();
    }

private:
    static void RunTracker(bool withCard)
    {
        cardComes = withCard;
        cardIsIn = false;
        looks = 0;
        Trackers::Run(Tracker::Volume);
    }

    Machine& machine;
};

class StartAct final : public Act
{
public:
    void Prepare() override {}
    void Run() override
    {
        const Armed armed;
        StartService();
    }
};

class VolumeFaults : public testing::Test
{
protected:
    VolumeFaults() { isMakersDisk = false; }

    Scene CardScene(const char* name)
    {
        Scene scene = {name,
                       [this] {
                           return std::make_unique<CardAct>(machine);
                       },
                       machine.Folder()};
        scene.kept = {{"", "windows 2", "those of the tracker, which runs until the process ends"}};
        return scene;
    }

    static void SweepStart(const char* name)
    {
        const Scene scene = {name, [] {
                                 return std::make_unique<StartAct>();
                             }};
        SweepFaults(scene);
        SweepAllocations(scene);
    }

    Machine machine;
    DrivePatches patches;
    Trackers trackers;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(VolumeFaults, OfACardThatArrives)
{
    const Scene scene = CardScene("volume");
    SweepFaults(scene);
    SweepAllocations(scene);
}

TEST_F(VolumeFaults, OfACardThatArrivesInPairs)
{
    SweepPairs(CardScene("volume"), 300);
}

TEST_F(VolumeFaults, OfADiskWithTheMakersFileSystem)
{
    isMakersDisk = true;
    const Scene scene = CardScene("makers_disk");
    SweepFaults(scene);
    SweepAllocations(scene);
}

TEST_F(VolumeFaults, OfTheStartOfTheServiceOnWindowsXp)
{
    SweepStart("start_on_xp");
}

TEST_F(VolumeFaults, OfTheStartOfTheServiceOnWindows2000)
{
    const WindowsVersion version(5, 0);
    SweepStart("start_on_2000");
}

TEST_F(VolumeFaults, OfTheStartOfTheServiceOnWindowsVista)
{
    const WindowsVersion version(6, 0);
    SweepStart("start_on_vista");
}

TEST_F(VolumeFaults, OfTheStartOfTheServiceOnLaterWindows)
{
    const WindowsVersion version(6, 1);
    SweepStart("start_on_later");
}

} // namespace
} // namespace kestraboot::tests
