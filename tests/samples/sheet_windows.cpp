#include "tests/samples/sheet_windows.h"

#include "samples/simulators/cards/card_slot.h"
#include "tests/support/unix_path.h"

namespace kestraboot::tests
{

SheetWindows::~SheetWindows()
{
    CloseAll(); // before the card is removed
    static_cast<void>(simulators::TakeCardOut(L'E'));
}

void SheetWindows::Show()
{
    ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
    viewer = StartFor(app, L"direct", L"devType=volume priDevId=\"E:\"");
    window = AwaitShown(*viewer, L"Pictures on E:");
    list = std::make_unique<RemoteList>(Item(IDC_PICTURES));
    SetText(Item(IDC_FOLDER), target.Path().wstring());
}

testing::AssertionResult SheetWindows::AwaitText(int id, const std::wstring& text) const
{
    const bool shown = Within(60'000, [&] {
        return TextOf(Item(id)) == text;
    });
    return shown ? testing::AssertionSuccess()
                 : testing::AssertionFailure() << "it is: " << testing::PrintToString(TextOf(Item(id)));
}

testing::AssertionResult SheetWindows::AwaitPicture(int row) const
{
    const bool shown = Within(60'000, [&] {
        return list->Image(row) >= kFirstPicture;
    });
    return shown ? testing::AssertionSuccess()
                 : testing::AssertionFailure() << "row " << row << " shows image " << list->Image(row);
}

} // namespace kestraboot::tests
