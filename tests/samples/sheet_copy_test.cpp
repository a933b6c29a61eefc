// Copying from the contact sheet: all, some, cancelled, and with the card removed or the program
// terminated in the middle.
#include "samples/simulators/cards/card_slot.h"
#include "tests/samples/sheet_windows.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr long long kMegabyte = 1 << 20;

class SheetCopy : public SheetWindows
{
protected:
    /// The names in the target folder.
    [[nodiscard]] std::vector<std::string> Copied() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(target.Path())) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    /// Waits until the copy of a picture is begun.
    [[nodiscard]] bool AwaitUnfinishedCopy() const
    {
        return Within(60'000, [this] {
            const std::vector<std::string> names = Copied();
            return names.size() == 1 && names.front().ends_with(".part");
        });
    }

    /// Waits until everything is read, and presses the button.
    void Begin(int button, int pictures, const std::wstring& rest = {})
    {
        Show();
        ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: " + std::to_wstring(pictures) + L"." + rest));
        Click(window, button);
    }
};

TEST_F(SheetCopy, AllCopiesEachPictureWhole)
{
    const auto source = card.AddFile(L"DCIM/a.jpg", jpeg);
    card.AddFile(L"DCIM/b.png", std::string(3'000'000, 'b')); // more than one block
    card.AddFile(L"DCIM/c.txt", "no picture");
    Begin(IDC_COPY_ALL, 2, L" Unreadable pictures: 1.");
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Copied: 2 of 2."));
    EXPECT_THAT(Copied(), UnorderedElementsAre("a.jpg", "b.png"));
    std::ifstream copy(target.Path() / L"a.jpg", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(copy), {}), jpeg);
    EXPECT_EQ(std::filesystem::file_size(target.Path() / L"b.png"), 3'000'000U);
    EXPECT_EQ(std::filesystem::last_write_time(target.Path() / L"a.jpg"),
              std::filesystem::last_write_time(source));
}

TEST_F(SheetCopy, OverwritesNothingAndCopiesNothingTwice)
{
    card.AddFile(L"1/a.jpg", jpeg);
    card.AddFile(L"2/a.jpg", jpeg + "another");
    target.AddFile(L"a.jpg", "mine");
    Begin(IDC_COPY_ALL, 2);
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Copied: 2 of 2."));
    EXPECT_THAT(Copied(), UnorderedElementsAre("a.jpg", "a (2).jpg", "a (3).jpg"));
    EXPECT_EQ(std::filesystem::file_size(target.Path() / L"a.jpg"), 4U);

    std::filesystem::remove(target.Path() / L"a.jpg");
    std::filesystem::rename(target.Path() / L"a (2).jpg", target.Path() / L"a.jpg");
    list->Select(0);
    Click(window, IDC_COPY_SELECTED);
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Copied: 0 of 1. Already there: 1."));
    EXPECT_THAT(Copied(), UnorderedElementsAre("a.jpg", "a (3).jpg"));
}

TEST_F(SheetCopy, SelectedCopiesThoseAlone)
{
    for (const wchar_t* const name : {L"a.jpg", L"b.jpg", L"c.jpg", L"d.jpg"}) {
        card.AddFile(name, jpeg);
    }
    Begin(IDC_COPY_SELECTED, 4); // nothing is selected, so there is nothing to copy
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Copied: 0 of 0."));
    list->Select(1);
    list->Select(3);
    SetText(Item(IDC_FOLDER), (target.Path() / L"made" / L"anew").wstring());
    Click(window, IDC_COPY_SELECTED);
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Copied: 2 of 2."));
    EXPECT_TRUE(std::filesystem::exists(target.Path() / L"made" / L"anew" / L"b.jpg"));
    EXPECT_TRUE(std::filesystem::exists(target.Path() / L"made" / L"anew" / L"d.jpg"));

    ::SendMessageW(window, WM_COMMAND, MAKEWPARAM(ID_SELECT_ALL, 1), 0); // the command of Ctrl+A
    EXPECT_EQ(::SendMessageW(Item(IDC_PICTURES), LVM_GETSELECTEDCOUNT, 0, 0), 4);
}

TEST_F(SheetCopy, SaysWhichFolderCannotBeMade)
{
    card.AddFile(L"a.jpg", jpeg);
    Show();
    ASSERT_TRUE(AwaitText(IDC_STATUS, L"Pictures: 1."));
    const std::wstring inFile = target.AddFile(L"file", "").wstring() + L"\\folder";
    for (const std::wstring& folder : {std::wstring(), std::wstring(L"no\\full path"), inFile}) {
        SetText(Item(IDC_FOLDER), folder);
        Click(window, IDC_COPY_ALL);
        EXPECT_TRUE(AwaitText(IDC_ACTION, L"The folder cannot be made: " + folder));
    }
    EXPECT_THAT(Copied(), ElementsAre("file"));
}

TEST_F(SheetCopy, CancelLeavesNoHalfWrittenFile)
{
    MakeSparseFile(card.Path() / L"a.jpg", 8192 * kMegabyte);
    Begin(IDC_COPY_ALL, 1, L" Unreadable pictures: 1.");
    ASSERT_TRUE(AwaitText(IDC_ACTION, L"Copying 1 of 1: a.jpg"));
    ASSERT_TRUE(AwaitUnfinishedCopy());
    Click(window, IDCANCEL);
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"Cancelled. Copied: 0 of 1."));
    EXPECT_THAT(Copied(), IsEmpty());
    EXPECT_TRUE(::IsWindowEnabled(Item(IDC_COPY_ALL)));
}

TEST_F(SheetCopy, ClosingTheWindowLeavesNoHalfWrittenFile)
{
    MakeSparseFile(card.Path() / L"a.jpg", 8192 * kMegabyte);
    Begin(IDC_COPY_ALL, 1, L" Unreadable pictures: 1.");
    ASSERT_TRUE(AwaitText(IDC_ACTION, L"Copying 1 of 1: a.jpg"));
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer->ExitCode(), 0U);
    EXPECT_THAT(Copied(), IsEmpty());
}

TEST_F(SheetCopy, ATerminatedProcessLeavesNoHalfWrittenFile)
{
    MakeSparseFile(card.Path() / L"a.jpg", 8192 * kMegabyte);
    Begin(IDC_COPY_ALL, 1, L" Unreadable pictures: 1.");
    ASSERT_TRUE(AwaitText(IDC_ACTION, L"Copying 1 of 1: a.jpg"));
    ASSERT_TRUE(AwaitUnfinishedCopy());
    ::TerminateProcess(viewer->Handle(), 1);
    EXPECT_EQ(viewer->ExitCode(), 1U);
    EXPECT_TRUE(Within(30'000, [this] {
        return Copied().empty();
    }));
}

TEST_F(SheetCopy, ACardPulledInTheMiddleLeavesWholeFilesAlone)
{
    MakeSparseFile(card.Path() / L"a.jpg", 256 * kMegabyte); // of which Wine's host keeps it open
    card.AddFile(L"b.jpg", jpeg);
    card.AddFile(L"c.jpg", jpeg);
    Begin(IDC_COPY_ALL, 3, L" Unreadable pictures: 1.");
    ASSERT_TRUE(AwaitText(IDC_ACTION, L"Copying 1 of 3: a.jpg"));
    ASSERT_TRUE(simulators::TakeCardOut(L'E'));
    EXPECT_TRUE(AwaitText(IDC_ACTION, L"E: was removed. Copied: 1 of 3."));
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"E: was removed. Pictures: 3. Unreadable pictures: 1."));
    EXPECT_THAT(Copied(), ElementsAre("a.jpg"));
    EXPECT_EQ(std::filesystem::file_size(target.Path() / L"a.jpg"), 256U * kMegabyte);
}

} // namespace
} // namespace kestraboot::tests
