// The applications that the chooser lists, with their names and pictures.
#include "tests/samples/sample_windows.h"
#include "tests/support/compatible_application.h"
#include "tests/support/registry_sandbox.h"

#include <gmock/gmock.h>

#include <set>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

class ChooserList : public SampleWindows
{
protected:
    void Ask(const std::wstring& device = kCamera)
    {
        viewer = StartFor(app, L"select", device);
        window = AwaitShown(*viewer, kChooserTitle);
        list = std::make_unique<RemoteList>(::GetDlgItem(window, IDC_APPLICATIONS));
    }

    /// A further application, of the same files.
    void AddApplication(const std::wstring& key, const std::wstring& name) const
    {
        const std::wstring path = L"SOFTWARE\\Corvane\\" + key + L"\\Corvane Kestrafetch";
        Register({path, name, app.Proxy().wstring(), app.Application().wstring(), L"jpg"});
    }

    Installation app{L"Mail Albums"};
    std::unique_ptr<ChildProcess> viewer;
    std::unique_ptr<RemoteList> list;
    HWND window = nullptr;
};

TEST_F(ChooserList, ShowsNamesAndDescriptionsWithTheOrganiserLast)
{
    const LegacyOrganiser organiser;
    PutText(HKEY_LOCAL_MACHINE, app.KeyPath(), L"Desc", L"Sorts pictures");
    AddApplication(L"A", L"\u00DCbersicht"); // without a description
    Ask();
    EXPECT_THAT(list->Column(0),
                ElementsAre(L"\u00DCbersicht", L"Mail Albums", L"Corvane Vellumry 3.0"));
    EXPECT_THAT(list->Column(1),
                ElementsAre(L"", L"Sorts pictures", L"Organize and edit pictures using"));
}

TEST_F(ChooserList, HasTheQuestionForItsNameToAScreenReader)
{
    Ask(L"devType=volume priDevId=\"E:\"");
    const HWND label = ::GetWindow(::GetDlgItem(window, IDC_APPLICATIONS), GW_HWNDPREV);
    EXPECT_EQ(TextOf(label), L"Drive E: was connected. Which application shall open it?");
    EXPECT_EQ(TextOf(::GetDlgItem(window, IDC_ALWAYS)), L"&Always use this one");
    EXPECT_EQ(TextOf(::GetDlgItem(window, IDOK)), L"&Open");
}

TEST_F(ChooserList, TellsApplicationsOfOneNameApartAndOnlyTheFirstCanBeTheDefault)
{
    const Installation other(L"Mail Copy");
    PutText(HKEY_LOCAL_MACHINE, other.KeyPath(), L"Name", L"Mail Albums");
    Ask();
    EXPECT_THAT(list->Column(), ElementsAre(L"Mail Albums (" + app.Application().wstring() + L")",
                                            L"Mail Albums (" + other.Application().wstring() + L")"));
    EXPECT_TRUE(::IsWindowEnabled(::GetDlgItem(window, IDC_ALWAYS)));
    ::SendMessageW(::GetDlgItem(window, IDC_ALWAYS), BM_CLICK, 0, 0); // before the selection
    list->Select(1);
    EXPECT_FALSE(::IsWindowEnabled(::GetDlgItem(window, IDC_ALWAYS)));
    EXPECT_EQ(::SendMessageW(::GetDlgItem(window, IDC_ALWAYS), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(other, kCameraReport));
}

TEST_F(ChooserList, AnIconThatCannotBeLoadedIsReplaced)
{
    PutText(HKEY_LOCAL_MACHINE, app.KeyPath(), L"Icon", app.Application().wstring() + L",0");
    for (const wchar_t* const icon : {L"", L"C:\\nothing.dll,5", L"C:\\nothing.dll, 111", L",",
                                      L"C:\\windows\\win.ini,0", L"a,b,c"}) {
        const std::wstring key = L"I" + std::to_wstring(std::wcslen(icon));
        AddApplication(key, key);
        PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\" + key + L"\\Corvane Kestrafetch", L"Icon",
                icon);
    }
    Ask();
    ASSERT_EQ(list->Count(), 7);
    std::set<int> images;
    for (int row = 0; row < list->Count(); ++row) {
        images.insert(list->Image(row));
    }
    EXPECT_EQ(images.size(), 7U) << "each row has an icon of its own";
    EXPECT_GE(*images.begin(), 0);
}

TEST_F(ChooserList, ShowsFiftyAndStartsTheLast)
{
    for (int i = 0; i < 48; ++i) {
        AddApplication(L"Many\\" + std::to_wstring(i), L"Application " + std::to_wstring(i));
    }
    const Installation last(L"Zebra");
    Ask();
    EXPECT_EQ(list->Count(), 50);
    list->Select(list->Find(L"Zebra"));
    Click(window, IDOK);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_TRUE(AwaitStarted(last, kCameraReport));
}

} // namespace
} // namespace kestraboot::tests
