// The session as the source manager sees it: the calls that open, query and close it.
#include "kestraboot/version.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_window.h"
#include "tests/support/stand_in_folder.h"
#include "trackers/still_image/twain_session.h"
#include "trackers/still_image/twain_source.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace kestraboot::tests
{
namespace
{

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class TwainSessionTest : public testing::Test
{
protected:
    TwainSessionTest()
    {
        standIns.Write("twain_sources.txt", {"source First", "source Second"});
        standIns.StartLog("twain_calls.txt");
    }

    /// Nothing of a session is left after it.
    ~TwainSessionTest() override
    {
        EXPECT_EQ(::GetModuleHandleW(L"twain_32.dll"), nullptr);
        EXPECT_EQ(FindOwnWindow(L"TWAINTrackerWindow"), nullptr);
    }

    std::vector<std::string> Calls() const { return standIns.Log("twain_calls.txt"); }

    StandInFolder standIns;
};

TEST_F(TwainSessionTest, OpensAsksForAllSourcesAndCloses)
{
    EXPECT_FALSE(TwainSourceListed(L"Third"));
    EXPECT_THAT(Calls(), ElementsAre(StartsWith("769 of=1,4 destination=0 result=0"),
                                     StartsWith("4 of=1,3 destination=0 result=0"),
                                     StartsWith("5 of=1,3 destination=0 result=0"),
                                     StartsWith("5 of=1,3 destination=0 result=7"),
                                     StartsWith("770 of=1,4 destination=0 result=0")));
}

TEST_F(TwainSessionTest, IsAcceptedInEveryCallByAStrictSourceManager)
{
    for (const wchar_t* const name : {L"First", L"Second", L"Third"}) {
        static_cast<void>(TwainSourceListed(name));
    }
    EXPECT_THAT(Calls(), Each(Not(HasSubstr("refused"))));
    EXPECT_THAT(Calls(), Contains(StartsWith("770 ")).Times(3));
}

TEST_F(TwainSessionTest, StopsAskingOnceTheSourceIsFound)
{
    EXPECT_TRUE(TwainSourceListed(L"First"));
    EXPECT_THAT(Calls(), ElementsAre(StartsWith("769 "), StartsWith("4 "), StartsWith("770 ")));
}

/// A text field of 34 bytes, as the log shows it.
std::string Field(const std::string& text)
{
    std::string hex;
    for (const char letter : text) {
        char digits[3] = {};
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(letter));
        hex += digits;
    }
    return hex + std::string(2 * (34 - text.size()), '0');
}

TEST_F(TwainSessionTest, IdentifiesItselfInTheStandardsLayout)
{
    EXPECT_TRUE(TwainSourceListed(L"First"));
    const std::string identity = "0100bf020d000100" + // 1.703, TWLG_USA, TWCY_USA
                                 Field(KESTRABOOT_VERSION_TEXT) +
                                 "01000700"
                                 "03000000" + // protocol 1.7, DG_CONTROL and DG_IMAGE
                                 Field("Corvane") +
                                 Field("Kestrafetch") + Field("Corvane Kestrafetch");
    ASSERT_EQ(Calls().size(), 3U);
    EXPECT_THAT(Calls()[0], EndsWith(" origin=00000000" + identity));
    // With the Id that the source manager assigned.
    EXPECT_THAT(Calls()[1], EndsWith(" origin=01000000" + identity));
    EXPECT_THAT(Calls()[2], EndsWith(" origin=01000000" + identity));
}

TEST_F(TwainSessionTest, HandsOverAPointerToTheHandleOfItsWindow)
{
    EXPECT_TRUE(TwainSourceListed(L"First"));
    constexpr const char* kWindow = " parent=TWAINTrackerWindow,Static,popup,20,20,200,200 ";
    ASSERT_EQ(Calls().size(), 3U);
    EXPECT_THAT(Calls().front(), HasSubstr(kWindow));
    EXPECT_THAT(Calls().back(), HasSubstr(kWindow));
}

TEST_F(TwainSessionTest, FreesTheSourceManagerLast)
{
    const FAKE_IMPORT(FreeLibrary) frees([&](HMODULE library) {
        EXPECT_EQ(FindOwnWindow(L"TWAINTrackerWindow"), nullptr);
        return frees.CallOriginal(library);
    });
    EXPECT_TRUE(TwainSourceListed(L"First"));
    EXPECT_EQ(frees.Calls(), 1);
}

TEST_F(TwainSessionTest, ThatDoesNotOpenIsClosedAndListsNothing)
{
    standIns.Write("twain_sources.txt", {"fail-open", "source First"});
    EXPECT_FALSE(TwainSourceListed(L"First"));
    EXPECT_THAT(Calls(), ElementsAre(StartsWith("769 of=1,4 destination=0 result=1"),
                                     StartsWith("770 of=1,4 destination=0 result=1")));
}

TEST_F(TwainSessionTest, IsOpenWhateverElseOpeningAnswers)
{
    standIns.Write("twain_sources.txt", {"check-status", "source First"});
    EXPECT_TRUE(TwainSourceListed(L"First"));
}

TEST_F(TwainSessionTest, WithoutASourceManagerListsNothing)
{
    const FAKE_IMPORT(LoadLibraryW) loads([](const wchar_t* name) -> HMODULE {
        EXPECT_STREQ(name, L"twain_32.dll");
        ::SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    });
    const FAKE_IMPORT(GetProcAddress) finds([](HMODULE, const char*) -> FARPROC {
        return nullptr;
    });
    EXPECT_FALSE(TwainSourceListed(L"First"));
    EXPECT_EQ(finds.Calls(), 0) << "without a library the program itself would be searched";
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(TwainSessionTest, WithoutTheEntryPointListsNothing)
{
    const FAKE_IMPORT(GetProcAddress) finds([](HMODULE, const char* name) -> FARPROC {
        EXPECT_EQ(name, MAKEINTRESOURCEA(1));
        return nullptr;
    });
    EXPECT_FALSE(TwainSourceListed(L"First"));
    EXPECT_EQ(finds.Calls(), 1);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(TwainSessionTest, WithoutAWindowIsRefusedByTheSourceManager)
{
    const FAKE_IMPORT(CreateWindowExW)
        noWindow([](DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND, HMENU,
                    HINSTANCE, void*) -> HWND {
            return nullptr;
        });
    EXPECT_FALSE(TwainSourceListed(L"First"));
    EXPECT_THAT(Calls(), Contains(HasSubstr("refused: the parent is no window;")));
}

} // namespace
} // namespace kestraboot::tests
