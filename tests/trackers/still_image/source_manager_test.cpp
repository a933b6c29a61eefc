// The stand-in for a source manager checks its caller strictly, because the tests of the session rely on
// that.
#include "tests/support/stand_in_folder.h"
#include "trackers/still_image/twain_session.h"

#include <gmock/gmock.h>

#include <cstring>

namespace kestraboot::tests
{
namespace
{

using namespace twain;
using testing::HasSubstr;

class SourceManager : public testing::Test
{
protected:
    SourceManager()
    {
        standIns.Write("twain_sources.txt", {"source First"});
        standIns.StartLog("twain_calls.txt");
        std::strcpy(application.ProductName, "Some Product");
        entry = reinterpret_cast<DSMENTRYPROC>(reinterpret_cast<void*>(
            ::GetProcAddress(library.get(), MAKEINTRESOURCEA(kDsmEntryOrdinal))));
    }

    TW_UINT16 OfParent(TW_IDENTITY& asker, TW_UINT16 message)
    {
        HWND handle = window.get();
        return entry(&asker, nullptr, DG_CONTROL, DAT_PARENT, message, &handle);
    }

    TW_UINT16 OfSources(TW_IDENTITY& asker, TW_UINT16 message)
    {
        TW_IDENTITY source = {};
        return entry(&asker, nullptr, DG_CONTROL, DAT_IDENTITY, message, &source);
    }

    [[nodiscard]] std::string LastCall() const { return standIns.Log("twain_calls.txt").back(); }

    StandInFolder standIns;
    UniqueModule library = UniqueModule(::LoadLibraryW(L"twain_32.dll"));
    DSMENTRYPROC entry = nullptr;
    TW_IDENTITY application = {};
    UniqueWindow window = UniqueWindow(
        ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
};

TEST_F(SourceManager, RefusesAnApplicationWithoutAProductName)
{
    application.ProductName[0] = '\0';
    EXPECT_EQ(OfParent(application, MSG_OPENDSM), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: the product name is empty;"));
}

TEST_F(SourceManager, RefusesATextWithoutATerminator)
{
    std::memset(application.Manufacturer, 'x', sizeof application.Manufacturer);
    EXPECT_EQ(OfParent(application, MSG_OPENDSM), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: a text has no terminator;"));
}

TEST_F(SourceManager, RefusesAnApplicationThatItDidNotOpenFor)
{
    ASSERT_EQ(OfParent(application, MSG_OPENDSM), TWRC_SUCCESS);
    EXPECT_NE(application.Id, 0U);
    TW_IDENTITY other = application;
    ++other.Id;
    EXPECT_EQ(OfSources(other, MSG_GETFIRST), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: another application opened it;"));
    EXPECT_EQ(OfParent(other, MSG_CLOSEDSM), TWRC_FAILURE);
    EXPECT_EQ(OfSources(application, MSG_GETFIRST), TWRC_SUCCESS);
    EXPECT_EQ(OfParent(application, MSG_CLOSEDSM), TWRC_SUCCESS);
}

TEST_F(SourceManager, RefusesAParentThatIsNoWindow)
{
    ::DestroyWindow(window.get());
    EXPECT_EQ(OfParent(application, MSG_OPENDSM), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: the parent is no window;"));
    EXPECT_EQ(entry(&application, nullptr, DG_CONTROL, DAT_PARENT, MSG_OPENDSM, nullptr), TWRC_FAILURE);
}

TEST_F(SourceManager, RefusesCallsInTheWrongState)
{
    EXPECT_EQ(OfSources(application, MSG_GETFIRST), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: it is not open;"));
    EXPECT_EQ(OfParent(application, MSG_CLOSEDSM), TWRC_FAILURE);
    ASSERT_EQ(OfParent(application, MSG_OPENDSM), TWRC_SUCCESS);
    EXPECT_EQ(OfParent(application, MSG_OPENDSM), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: it is open already;"));
    EXPECT_EQ(OfSources(application, MSG_GETNEXT), TWRC_FAILURE);
    EXPECT_THAT(LastCall(), HasSubstr("refused: the first source was not asked for;"));
    EXPECT_EQ(OfParent(application, MSG_CLOSEDSM), TWRC_SUCCESS);
    EXPECT_EQ(OfSources(application, MSG_GETNEXT), TWRC_FAILURE);
}

} // namespace
} // namespace kestraboot::tests
