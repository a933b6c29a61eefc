// The layout of the contact sheet's controls. Lengths are dialog units, which grow with the font.
#include "resource.h"
#include "sheet.h"

namespace
{

constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kLine = 10;
constexpr int kButton = 15;

RECT ToPixels(HWND window, int left, int top, int right, int bottom)
{
    RECT place = {left, top, right, bottom};
    ::MapDialogRect(window, &place);
    return place;
}

} // namespace

SIZE Sheet::Least() const
{
    const RECT least = ToPixels(window, 0, 0, 340, 180);
    return {least.right, least.bottom};
}

void Sheet::Layout() const
{
    // The window's width and height in dialog units: the inverse of MapDialogRect.
    RECT inside = {};
    ::GetClientRect(window, &inside);
    const RECT unit = ToPixels(window, 0, 0, 1000, 1000);
    const int width = ::MulDiv(inside.right, 1000, unit.right);
    const int height = ::MulDiv(inside.bottom, 1000, unit.bottom);
    if (width < 2 * kMargin || height < 2 * kMargin) {
        return; // minimised
    }
    HDWP moved = ::BeginDeferWindowPos(10);
    const auto put = [&](int id, int left, int top, int right, int bottom) {
        const RECT place = ToPixels(window, left, top, right, bottom);
        moved =
            ::DeferWindowPos(moved, Item(id), nullptr, place.left, place.top, place.right - place.left,
                             place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    };
    const int right = width - kMargin;
    const int lastRow = height - kMargin - kButton;
    const int folderRow = lastRow - kGap - kButton;
    const int detailsRow = folderRow - kGap - kLine;
    put(IDC_STATUS, kMargin, kMargin, right, kMargin + kLine);
    put(IDC_PICTURES, kMargin, kMargin + kLine + kGap, right, detailsRow - kGap);
    put(IDC_DETAILS, kMargin, detailsRow, right, detailsRow + kLine);

    put(IDC_COPY_SELECTED, right - 76, folderRow, right, folderRow + kButton);
    put(IDC_COPY_ALL, right - 138, folderRow, right - 80, folderRow + kButton);
    put(IDC_BROWSE, right - 194, folderRow, right - 142, folderRow + kButton);
    put(IDC_FOLDER, kMargin + 38, folderRow + 1, right - 198, folderRow + 14);
    put(IDC_FOLDER_LABEL, kMargin, folderRow + 3, kMargin + 36, folderRow + 3 + kLine);

    put(IDCANCEL, right - 76, lastRow, right, lastRow + kButton);
    put(IDC_PROGRESS, right - 194, lastRow + 2, right - 80, lastRow + 13);
    put(IDC_ACTION, kMargin, lastRow + 3, right - 198, lastRow + 3 + kLine);
    ::EndDeferWindowPos(moved);
    Send(IDC_PICTURES, LVM_ARRANGE, LVA_DEFAULT);
}
