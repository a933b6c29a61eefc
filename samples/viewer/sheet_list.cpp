// The list view's requests to the contact sheet.
#include "resource.h"
#include "sheet.h"
#include "text.h"

#include <cwchar>
#include <shlwapi.h>

namespace
{

std::wstring LabelOf(const Picture& picture)
{
    const std::wstring name = picture.file.path.filename().wstring();
    if (picture.state == PictureState::Unreadable) {
        return Text(IDS_LABEL_UNREADABLE, {name});
    }
    const std::wstring label =
        Text(IDS_LABEL, {name, SizeText(picture.file.size), DayText(picture.taken)});
    return label.substr(0, label.find_last_not_of(L' ') + 1);
}

} // namespace

LRESULT Sheet::OnNotify(NMHDR& notice)
{
    if (notice.idFrom != IDC_PICTURES) {
        return 0;
    }
    switch (notice.code) {
    case LVN_GETDISPINFOW:
        FillItem(reinterpret_cast<NMLVDISPINFOW&>(notice).item);
        return 0;
    case LVN_ODFINDITEMW:
        return FindByName(reinterpret_cast<const NMLVFINDITEMW&>(notice));
    case LVN_ITEMCHANGED:
    case LVN_ODSTATECHANGED:
        ShowDetails();
        return 0;
    default:
        return 0;
    }
}

void Sheet::FillItem(LVITEMW& item)
{
    const auto index = static_cast<std::size_t>(item.iItem);
    if (!reader || index >= listed) {
        return;
    }
    const Picture picture = reader->Get(index);
    if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0) {
        const std::wstring label = LabelOf(picture);
        item.pszText[label.copy(item.pszText, static_cast<std::size_t>(item.cchTextMax) - 1)] = L'\0';
    }
    if ((item.mask & LVIF_IMAGE) == 0) {
        return;
    }
    if (picture.state == PictureState::Unreadable) {
        item.iImage = Thumbnails::kUnreadable;
        return;
    }
    item.iImage = thumbnails->PlaceOf(index);
    if (item.iImage == Thumbnails::kWaiting) {
        if (toAsk.empty()) {
            ::PostMessageW(window, kAsk, 0, 0); // when the whole list has been drawn
        }
        toAsk.push_back(index);
    }
}

/// A name that begins with what the user types.
int Sheet::FindByName(const NMLVFINDITEMW& wanted) const
{
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0) {
        return -1;
    }
    const int length = static_cast<int>(std::wcslen(wanted.lvfi.psz));
    for (std::size_t i = 0; i < listed; ++i) {
        const std::size_t index = (static_cast<std::size_t>(wanted.iStart) + i) % listed;
        const std::wstring name = reader->Get(index).file.path.filename().wstring();
        if (::StrCmpNIW(name.c_str(), wanted.lvfi.psz, length) == 0) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

/// Of the picture that has the focus, in a line below.
void Sheet::ShowDetails() const
{
    const auto focused = static_cast<std::size_t>(
        Send(IDC_PICTURES, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    if (!reader || focused >= listed) {
        SetText(IDC_DETAILS, {});
        return;
    }
    const Picture picture = reader->Get(focused);
    const std::wstring path = picture.file.path.wstring();
    const std::wstring size = SizeText(picture.file.size);
    if (picture.state == PictureState::Unread) {
        SetText(IDC_DETAILS, Text(IDS_DETAILS_UNREAD, {size, path}));
    } else if (picture.state == PictureState::Unreadable) {
        SetText(IDC_DETAILS, Text(IDS_DETAILS_UNREADABLE, {path}));
    } else {
        const std::wstring date = DateText(picture.taken);
        const std::wstring taken = date.empty() ? std::wstring() : Text(IDS_TAKEN, {date});
        SetText(IDC_DETAILS, Text(IDS_DETAILS, {std::to_wstring(picture.width),
                                                std::to_wstring(picture.height), size, taken, path}));
    }
}
