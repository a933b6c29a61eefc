#include "sheet.h"

#include "resource.h"
#include "text.h"

#include <dbt.h>
#include <shlobj.h>

namespace
{

std::wstring ProposedFolder()
{
    wchar_t pictures[MAX_PATH] = {};
    ::SHGetFolderPathW(nullptr, CSIDL_MYPICTURES, nullptr, SHGFP_TYPE_CURRENT, pictures);
    return std::wstring(pictures) + L'\\' + Text(IDS_FOLDER_NAME);
}

/// The message by which Windows notifies every window that a drive was removed.
bool TellsOfRemoval(WPARAM event, LPARAM device, wchar_t letter)
{
    const auto* const volume = reinterpret_cast<const DEV_BROADCAST_VOLUME*>(device);
    return event == DBT_DEVICEREMOVECOMPLETE && volume != nullptr &&
           volume->dbcv_devicetype == DBT_DEVTYP_VOLUME &&
           (volume->dbcv_unitmask >> ((letter | 0x20) - L'a') & 1) != 0;
}

} // namespace

bool ShowSheet(const std::wstring& drive, const std::wstring& reportStart)
{
    Sheet sheet(drive, reportStart);
    const HWND window = sheet.Create(IDD_SHEET);
    if (window == nullptr) {
        return false;
    }
    ::ShowWindow(window, SW_SHOW);
    const HACCEL keys = ::LoadAcceleratorsW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_KEYS));
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        // In the edit control Ctrl+A is its own.
        const bool inList = ::GetFocus() == ::GetDlgItem(window, IDC_PICTURES);
        if ((!inList || !::TranslateAcceleratorW(window, keys, &message)) &&
            !::IsDialogMessageW(window, &message)) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
    }
    return sheet.Reported();
}

void Sheet::OnInit()
{
    ::SetWindowTextW(window, Text(IDS_SHEET_TITLE, {drive}).c_str());
    SetText(IDC_FOLDER, ProposedFolder());
    Send(IDC_PICTURES, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_DOUBLEBUFFER);
    Send(IDC_PROGRESS, PBM_SETRANGE32, 0, 1000);
    MakeThumbnails();
    Layout();
    ::SetFocus(Item(IDC_PICTURES));
}

void Sheet::Close()
{
    ::ShowWindow(window, SW_HIDE); // what is being decoded or copied is waited for
    copying.reset();
    reader.reset();
    ::DestroyWindow(window);
}

void Sheet::OnCommand(unsigned id)
{
    if (id == IDC_BROWSE) {
        ChooseFolder();
    } else if (id == IDC_COPY_ALL || id == IDC_COPY_SELECTED) {
        Copy(id == IDC_COPY_ALL);
    } else if (id == IDCANCEL && copying) {
        copying->Cancel();
    } else if (id == ID_SELECT_ALL) {
        LVITEMW all = {};
        all.state = all.stateMask = LVIS_SELECTED;
        Send(IDC_PICTURES, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&all));
    }
}

bool Sheet::OnMessage(UINT message, WPARAM wide, LPARAM value)
{
    switch (message) {
    case kChanged:
        Changed();
        return true;
    case kAsk:
        AskForThumbnails();
        return true;
    case WM_SIZE:
        Layout();
        return true;
    case WM_GETMINMAXINFO: {
        const SIZE least = Least();
        reinterpret_cast<MINMAXINFO*>(value)->ptMinTrackSize = {least.cx, least.cy};
        return true;
    }
    case kDpiChanged:
        MakeThumbnails();
        return false; // Windows lays out the rest
    case WM_DEVICECHANGE:
        if (reader && TellsOfRemoval(wide, value, drive.front())) {
            reader->DriveIsGone();
        }
        return false;
    case WM_CLOSE:
        Close();
        return true;
    case WM_DESTROY:
        ::PostQuitMessage(0);
        return true;
    default:
        return false;
    }
}
