#include "chooser.h"

#include "record_icon.h"
#include "resource.h"
#include "text.h"

Chooser::~Chooser()
{
    if (icons != nullptr) {
        ::ImageList_Destroy(icons);
    }
}

void Chooser::OnInit()
{
    SetText(IDC_QUESTION,
            request.deviceId.empty()
                ? Text(IDS_ASK)
                : Text(IDS_ASK_DEVICE, {ArrivalText(request.deviceType, request.deviceId)}));
    Send(IDC_APPLICATIONS, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
         LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    for (const unsigned title : {0U, 1U}) {
        std::wstring text = Text(IDS_COLUMN_NAME + title);
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT;
        column.pszText = text.data();
        Send(IDC_APPLICATIONS, LVM_INSERTCOLUMNW, title, reinterpret_cast<LPARAM>(&column));
    }
    FillList();
    ::SetFocus(Item(IDC_APPLICATIONS));
}

void Chooser::FillList()
{
    choices = ListChoices(library);
    Send(IDC_APPLICATIONS, LVM_DELETEALLITEMS);
    const int size = ::MulDiv(32, Dpi(), 96);
    const HIMAGELIST before = icons;
    icons = ::ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, static_cast<int>(choices.size()), 8);
    Send(IDC_APPLICATIONS, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(icons));
    if (before != nullptr) {
        ::ImageList_Destroy(before);
    }
    for (int row = 0; row < static_cast<int>(choices.size()); ++row) {
        AddRow(row);
    }
    FitColumns();
    LVITEMW first = {};
    first.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    first.state = first.stateMask;
    Send(IDC_APPLICATIONS, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&first));
    if (choices.empty()) {
        SetText(IDC_QUESTION, Text(IDS_NOTHING_TO_CHOOSE));
    }
    FollowSelection();
}

void Chooser::AddRow(int row)
{
    Choice& choice = choices[static_cast<std::size_t>(row)];
    const HICON icon =
        LoadRecordIcon(choice.application.Icon, choice.application.CmdLine, ::MulDiv(32, Dpi(), 96));
    LVITEMW item = {};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = row;
    item.pszText = choice.title.data();
    item.iImage = ::ImageList_ReplaceIcon(icons, -1, icon);
    ::DestroyIcon(icon);
    Send(IDC_APPLICATIONS, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    item.iSubItem = 1;
    item.pszText = choice.application.Desc.data();
    Send(IDC_APPLICATIONS, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void Chooser::FitColumns() const
{
    Send(IDC_APPLICATIONS, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
    RECT inside = {};
    ::GetClientRect(Item(IDC_APPLICATIONS), &inside);
    const int name = static_cast<int>(Send(IDC_APPLICATIONS, LVM_GETCOLUMNWIDTH));
    const int widest = inside.right * 3 / 5; // so that the description is seen
    Send(IDC_APPLICATIONS, LVM_SETCOLUMNWIDTH, 0, name < widest ? name : widest);
    Send(IDC_APPLICATIONS, LVM_SETCOLUMNWIDTH, 1, inside.right - (name < widest ? name : widest));
}

int Chooser::Selected() const
{
    return static_cast<int>(
        Send(IDC_APPLICATIONS, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void Chooser::FollowSelection() const
{
    const int row = Selected();
    const bool canBeDefault = row >= 0 && choices[static_cast<std::size_t>(row)].canBeDefault;
    ::EnableWindow(Item(IDOK), row >= 0);
    ::EnableWindow(Item(IDC_ALWAYS), canBeDefault);
    if (!canBeDefault) {
        Send(IDC_ALWAYS, BM_SETCHECK, BST_UNCHECKED);
    }
}

void Chooser::Open()
{
    const Choice choice = choices[static_cast<std::size_t>(Selected())];
    if (!IsStillThere(library, choice)) {
        ::MessageBoxW(window, Text(IDS_VANISHED, {choice.title}).c_str(), Text(IDS_TITLE).c_str(),
                      MB_OK | MB_ICONWARNING);
        FillList();
        return;
    }
    if (Send(IDC_ALWAYS, BM_GETCHECK) == BST_CHECKED && !MakeDefault(library, choice)) {
        ::MessageBoxW(window, Text(IDS_NOT_REMEMBERED, {choice.title}).c_str(), Text(IDS_TITLE).c_str(),
                      MB_OK | MB_ICONWARNING);
    }
    Start(library, choice, request);
    ::EndDialog(window, IDOK);
}

void Chooser::OnCommand(unsigned id)
{
    if (id == IDOK && Selected() >= 0) {
        Open();
    } else if (id == IDCANCEL) {
        ::EndDialog(window, IDCANCEL);
    }
}

LRESULT Chooser::OnNotify(NMHDR& notice)
{
    if (notice.idFrom == IDC_APPLICATIONS && notice.code == LVN_ITEMCHANGED) {
        FollowSelection();
    } else if (notice.idFrom == IDC_APPLICATIONS && notice.code == LVN_ITEMACTIVATE) {
        OnCommand(IDOK);
    }
    return 0;
}

bool Chooser::OnMessage(UINT message, WPARAM /*wide*/, LPARAM /*value*/)
{
    if (message == kDpiChanged) {
        FillList(); // with icons of another size; Windows has laid out the rest
    }
    return false;
}
