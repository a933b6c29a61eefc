// The contact sheet, read by the messages of its standard controls.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "tests/samples/sheet_windows.h"
#include "tests/support/registry_sandbox.h"

#include <dbt.h>
#include <set>

namespace kestraboot::tests
{
namespace
{

/// A folder that this process holds open, so that nobody else can list it.
class Held
{
public:
    explicit Held(const std::filesystem::path& folder)
        : handle(::CreateFileW(folder.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS, nullptr))
    {
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { ::CloseHandle(handle); }

private:
    HANDLE handle;
};

/// During its lifetime a new program draws with that many dots to an inch on every monitor. In Wine 8,
/// LogPixels is the number of all monitors. In Wine 10 each display adapter has its own, in a key that
/// the first program of the session writes; a program that follows its monitor reads only that one.
class DotsToAnInch
{
public:
    explicit DotsToAnInch(DWORD dots)
    {
        DISPLAY_DEVICEW adapter = {};
        adapter.cb = sizeof adapter;
        const std::wstring machine = L"\\Registry\\Machine\\";
        EXPECT_TRUE(::EnumDisplayDevicesW(nullptr, 0, &adapter, 0));
        EXPECT_TRUE(std::wstring(adapter.DeviceKey).starts_with(machine)) << "the only adapter";
        adapterKey = adapter.DeviceKey + machine.size();
        adapterHasDots = StoredDword(HKEY_CURRENT_CONFIG, adapterKey, L"Dpi").has_value();
        Put(dots);
    }
    DotsToAnInch(const DotsToAnInch&) = delete;
    DotsToAnInch& operator=(const DotsToAnInch&) = delete;
    ~DotsToAnInch() { Put(USER_DEFAULT_SCREEN_DPI); }

private:
    void Put(DWORD dots) const
    {
        PutDword(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels", dots);
        if (adapterHasDots) {
            PutDword(HKEY_CURRENT_CONFIG, adapterKey, L"Dpi", dots);
        }
    }

    std::wstring adapterKey;
    bool adapterHasDots = false;
};

class Sheet : public SheetWindows
{
protected:
    void AddPictures(int count, const std::string& contents) const
    {
        for (int i = 0; i < count; ++i) {
            card.AddFile("DCIM/100TEST/IMG_" + std::to_string(1000 + i) + ".JPG", contents);
        }
    }
    void AddPictures(int count) const { AddPictures(count, jpeg); }
};

TEST_F(Sheet, ShowsSizeAndCaptureDateAndTurnsThePicture)
{
    card.AddFile(L"a.jpg", WithExif(MakeJpeg(64, 48), "2026:11:21 13:26:59", 6));
    card.AddFile(L"b.jpg", MakeJpeg(32, 24));
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 2."));
    wchar_t day[32] = {};
    const SYSTEMTIME taken = {2026, 11, 0, 21, 13, 26, 0, 0};
    ::GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &taken, nullptr, day, 32);
    EXPECT_TRUE(list->Text(0).ends_with(std::wstring(L"  ") + day)) << "the day it was taken";
    EXPECT_EQ(list->Text(1).find(L"20"), std::wstring::npos) << "no date where the file has none";
    EXPECT_TRUE(TextOf(Item(IDC_DETAILS)).starts_with(L"48 x 64 pixels, ")) << "the first has the focus";
    EXPECT_TRUE(TextOf(Item(IDC_DETAILS)).ends_with(L" E:\\a.jpg"));
    Press(Item(IDC_PICTURES), VK_END);
    EXPECT_TRUE(Within(30'000, [this] {
        return TextOf(Item(IDC_DETAILS)).starts_with(L"32 x 24 pixels, ");
    }));
}

TEST_F(Sheet, MarksABrokenPictureAndGoesOn)
{
    card.AddFile(L"a.jpg", "no picture");
    card.AddFile(L"b.jpg", jpeg.substr(0, 40));
    card.AddFile(L"c.jpg", "");
    card.AddFile(L"d.jpg", jpeg);
    Show();
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 4. Unreadable pictures: 3."));
    EXPECT_EQ(list->Text(0), L"a.jpg\nunreadable");
    for (const int row : {0, 1, 2}) {
        EXPECT_EQ(list->Image(row), kFirstPicture - 1);
    }
    EXPECT_TRUE(AwaitPicture(3));
}

TEST_F(Sheet, NamesAFolderThatItCannotReadAndGoesOn)
{
    card.AddFile(L"a/a.jpg", jpeg);
    card.AddFile(L"locked/b.jpg", jpeg);
    card.AddFile(L"locked too/c.jpg", jpeg);
    card.AddFile(L"z/d.jpg", jpeg);
    const Held held[] = {Held(card.Path() / L"locked"), Held(card.Path() / L"locked too")};
    Show();
    EXPECT_TRUE(
        AwaitText(IDC_STATUS, L"Pictures: 2. Folders that cannot be read: 2, such as E:\\locked."));
    EXPECT_TRUE(AwaitStarted(app, "picture: E:\\a\\a.jpg\npicture: E:\\z\\d.jpg\npictures: 2\n"));
}

TEST_F(Sheet, DecodesThePicturesInViewAlone)
{
    constexpr int kLast = 299;
    AddPictures(kLast + 1, HeaderOf(jpeg)); // if one is decoded, it is shown as unreadable
    Show();
    const auto isDecoded = [this](int row) {
        return list->Text(row).ends_with(L"\nunreadable");
    };
    EXPECT_TRUE(Within(30'000, [&] {
        return isDecoded(0);
    }));
    ASSERT_TRUE(Within(30'000, [this] {
        return list->Count() == kLast + 1;
    }));
    EXPECT_FALSE(isDecoded(kLast));
    ::SendMessageW(Item(IDC_PICTURES), LVM_ENSUREVISIBLE, kLast, FALSE);
    EXPECT_TRUE(Within(30'000, [&] {
        return isDecoded(kLast);
    }));
    EXPECT_FALSE(isDecoded(kLast / 2));
}

TEST_F(Sheet, ShowsTheCamerasSmallPictureWithoutDecodingTheWhole)
{
    const std::string whole = MakeJpeg(400, 300);
    const std::string small = MakeJpeg(160, 120);
    card.AddFile(L"a.jpg", WithThumbnail(HeaderOf(whole), small));
    card.AddFile(L"b.jpg", WithThumbnail(HeaderOf(whole), MakeJpeg(160, 160))); // of another shape
    card.AddFile(L"c.jpg", WithThumbnail(HeaderOf(whole), MakeJpeg(80, 60)));   // too small
    card.AddFile(L"d.jpg", WithThumbnail(HeaderOf(whole), HeaderOf(small)));
    card.AddFile(L"e.jpg", WithThumbnail(whole, HeaderOf(small)));
    Show();
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 5. Unreadable pictures: 3."));
    EXPECT_TRUE(AwaitPicture(0));
    EXPECT_TRUE(AwaitPicture(4)) << "the whole serves if the small one is broken";
    EXPECT_TRUE(TextOf(Item(IDC_DETAILS)).starts_with(L"400 x 300 pixels, "));
}

TEST_F(Sheet, ShowsTheSizeThatFollowsALongHeader)
{
    card.AddFile(L"a.jpg", WithLongHeader(jpeg));
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 1."));
    EXPECT_TRUE(TextOf(Item(IDC_DETAILS)).starts_with(L"64 x 48 pixels, "));
    EXPECT_TRUE(AwaitPicture(0));
}

TEST_F(Sheet, GivesEachPictureAPlaceThoughTheyAreFoundOneAfterAnother)
{
    constexpr int kFolders = 150; // so many that the list is drawn before the last one is found
    std::set<std::pair<long, long>> places;
    const auto first = card.AddFile(L"IMG_1000.JPG", jpeg);
    for (int i = 0; i < kFolders; ++i) {
        std::filesystem::create_hard_link(
            first, card.AddFolder(L"DCIM/" + std::to_wstring(100 + i) + L"TEST") / L"IMG_2000.JPG");
    }
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: " + std::to_wstring(kFolders + 1) + L"."));
    for (int row = 0; row <= kFolders; ++row) {
        places.insert(list->Position(row));
    }
    EXPECT_EQ(places.size(), kFolders + 1U);
}

TEST_F(Sheet, WithoutPicturesOffersNothingToCopy)
{
    card.AddFile(L"notes.txt", "no picture");
    Show();
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 0."));
    EXPECT_FALSE(::IsWindowEnabled(Item(IDC_COPY_ALL)));
    EXPECT_TRUE(AwaitStarted(app, "pictures: 0\n"));
}

TEST_F(Sheet, ACardThatGoesMakesNoPictureUnreadable)
{
    AddPictures(100);
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 100."));
    ASSERT_TRUE(AwaitPicture(0));
    ASSERT_TRUE(simulators::TakeCardOut(L'E'));
    EXPECT_EQ(list->Image(99), 0) << "not decoded yet: it is asked for now";
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"E: was removed. Pictures: 100."));
    EXPECT_FALSE(::IsWindowEnabled(Item(IDC_COPY_ALL)));
    EXPECT_GE(list->Image(0), kFirstPicture) << "what was decoded stays";
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer->ExitCode(), 0U);
}

TEST_F(Sheet, DetectsTheMessageThatItsDriveWasRemoved)
{
    AddPictures(1);
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 1."));
    ASSERT_TRUE(
        simulators::SendVolumeMessage(window, DBT_DEVICEREMOVECOMPLETE, L'F', SMTO_NORMAL, 30'000));
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 1."));
    ASSERT_TRUE(
        simulators::SendVolumeMessage(window, DBT_DEVICEREMOVECOMPLETE, L'E', SMTO_NORMAL, 30'000));
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"E: was removed. Pictures: 1."));
}

TEST_F(Sheet, FindsPicturesInEachFolderInTheOrderOfTheirNamesAndNoOthers)
{
    for (const char* const name : {"b/IMG_2.jpg", "b/IMG_10.JPEG", "a/deep/er/x.png", "y.tif", "z.TIFF",
                                   "a.txt", "jpg", "movie.mp4"}) {
        card.AddFile(name, jpeg);
    }
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 5."));
    EXPECT_TRUE(AwaitStarted(app,
                             "picture: E:\\y.tif\npicture: E:\\z.TIFF\n"
                             "picture: E:\\a\\deep\\er\\x.png\n"
                             "picture: E:\\b\\IMG_2.jpg\npicture: E:\\b\\IMG_10.JPEG\npictures: 5\n"));
}

TEST_F(Sheet, HasNamesForAScreenReader)
{
    AddPictures(1);
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 1."));
    EXPECT_EQ(::GetWindow(Item(IDC_PICTURES), GW_HWNDPREV), Item(IDC_STATUS));
    EXPECT_EQ(::GetWindow(Item(IDC_FOLDER), GW_HWNDPREV), Item(IDC_FOLDER_LABEL));
    EXPECT_EQ(TextOf(Item(IDC_FOLDER_LABEL)), L"Copy &to:");
    EXPECT_EQ(::GetWindow(Item(IDC_PROGRESS), GW_HWNDPREV), Item(IDC_ACTION));
}

TEST_F(Sheet, FollowsTheUsersChoiceOfLightOrDark)
{
    const wchar_t* const key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
    PutDword(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", 0);
    Show();
    EXPECT_EQ(::SendMessageW(Item(IDC_PICTURES), LVM_GETBKCOLOR, 0, 0), RGB(0x2B, 0x2B, 0x2B));
    EXPECT_EQ(::SendMessageW(Item(IDC_PICTURES), LVM_GETTEXTCOLOR, 0, 0), RGB(0xF2, 0xF2, 0xF2));
    PutDword(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", 1);
    ::SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
    EXPECT_EQ(static_cast<DWORD>(::SendMessageW(Item(IDC_PICTURES), LVM_GETBKCOLOR, 0, 0)),
              ::GetSysColor(COLOR_WINDOW));
}

TEST_F(Sheet, IsTwiceAsLargeAtTwiceTheDotsToAnInch)
{
    const DotsToAnInch dots(2 * USER_DEFAULT_SCREEN_DPI);
    AddPictures(1);
    Show();
    EXPECT_EQ(static_cast<DWORD>(::SendMessageW(Item(IDC_PICTURES), LVM_GETITEMSPACING, FALSE, 0)),
              static_cast<DWORD>(MAKELONG(352, 320)));
    EXPECT_TRUE(AwaitPicture(0));
}

} // namespace
} // namespace kestraboot::tests
