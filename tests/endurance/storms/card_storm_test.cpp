// Thousands of cards that are inserted and removed in three readers, in a process that runs the shipped
// library, with real drives. A model of a few lines gives the expected reports; --gtest_random_seed
// repeats a run.
#include "kestraboot/kestraboot.h"
#include "samples/simulators/cards/card_slot.h"
#include "tests/endurance/storms/tracker_clock.h"
#include "tests/support/handle_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/storm_size.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"
#include "tests/support/unix_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

std::vector<std::wstring> reported; ///< written by the tracker while the test waits for it

void Report(std::wstring& kind, std::wstring& deviceId)
{
    reported.push_back(kind + L' ' + deviceId);
    if (reported.size() % 16 == 0) {
        throw std::runtime_error("an exception of the host");
    }
}

/// Windows Vista, on which the volume tracker runs.
BOOL TellVista(OSVERSIONINFOW* version)
{
    version->dwMajorVersion = 6;
    version->dwMinorVersion = 0;
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    if (version->dwOSVersionInfoSize >= sizeof(OSVERSIONINFOEXW)) {
        reinterpret_cast<OSVERSIONINFOEXW*>(version)->wProductType = VER_NT_WORKSTATION;
    }
    return TRUE;
}

/// The rules for three readers: of the letters that are new at a poll, the first is searched and
/// reported if it has a picture. The others of the same poll are never reported.
class Readers
{
public:
    void Insert(wchar_t letter, bool picture) { cards[letter] = picture; }
    void TakeOut(wchar_t letter) { cards.erase(letter); }
    [[nodiscard]] bool Holds(wchar_t letter) const { return cards.contains(letter); }

    /// The report of this poll, or none.
    std::vector<std::wstring> Look()
    {
        std::vector<std::wstring> report;
        const auto first = std::ranges::find_if(cards, [this](const auto& card) {
            return !known.contains(card.first);
        });
        if (first != cards.end() && first->second) {
            report.push_back(std::wstring(L"volume ") + first->first + L':');
        }
        known.clear();
        for (const auto& card : cards) {
            known.insert(card.first);
        }
        return report;
    }

private:
    std::map<wchar_t, bool> cards; ///< the inserted ones, and whether they hold a picture
    std::set<wchar_t> known;       ///< the cards that were inserted at the previous poll
};

TEST(CardStorm, ReportsEachArrivalAsOftenAsTheRulesSay)
{
    const int insertions = StormSize(150, 5'000);
    SetModuleUnderTest(::GetModuleHandleW(L"kestraboot.dll"));
    const RegistrySandbox registry;
    const TempFolder folder;
    const SampleApplication app = RegisterOwnSample(folder.Path(), L"App");
    PutText(HKEY_LOCAL_MACHINE, app.keyPath + L"\\File Formats", L"Image", L"jpg");
    const TempFolder withPicture;
    const TempFolder without;
    withPicture.AddFile(L"DCIM/100TEST/IMG_0001.JPG");
    without.AddFile(L"DCIM/notes.txt");
    const std::string pictures = UnixPath(withPicture.Path());
    const std::string notes = UnixPath(without.Path());

    const FAKE_IMPORT(GetVersionExW) version(TellVista);
    TraceRecorder trace;
    // The tracker runs until the process ends, and so must its owner.
    TrackerClock& clock = *new TrackerClock;
    RegisterDeviceConnectCallback(Report);
    StartDeviceConnectService();
    ASSERT_TRUE(clock.AwaitFirstLook());

    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    Readers readers;
    int inserted = 0;
    int handlesBefore = 0;
    for (int look = 0; inserted < insertions; ++look) {
        // One to three of them change between two polls, some of them to and fro.
        for (std::uint32_t changes = 1 + random() % 3; changes > 0; --changes) {
            const wchar_t letter = static_cast<wchar_t>(L'E' + random() % 3);
            const bool picture = random() % 4 != 0;
            if (readers.Holds(letter)) {
                ASSERT_TRUE(simulators::TakeCardOut(letter));
                readers.TakeOut(letter);
            } else {
                ASSERT_TRUE(simulators::InsertCard(letter, picture ? pictures : notes));
                readers.Insert(letter, picture);
                ++inserted;
            }
        }
        reported.clear();
        trace.Clear();
        ASSERT_TRUE(clock.LookAgain());
        ASSERT_EQ(reported, readers.Look()) << "look " << look;
        if (look == 50) {
            handlesBefore = OpenHandlesOf(::GetCurrentProcess());
        }
    }
    for (const wchar_t letter : {L'E', L'F', L'G'}) {
        EXPECT_TRUE(!readers.Holds(letter) || simulators::TakeCardOut(letter));
    }
    ASSERT_TRUE(clock.LookAgain());
    const int handlesAfter = OpenHandlesOf(::GetCurrentProcess());
    EXPECT_LT(handlesAfter - handlesBefore, 10)
        << "a leak of one handle a card would make a hundred or more";
    std::cout << inserted << " cards, " << handlesBefore << " -> " << handlesAfter << " handles\n";
}

} // namespace
} // namespace kestraboot::tests
