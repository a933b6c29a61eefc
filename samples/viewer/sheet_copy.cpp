// The row below the pictures: the folder that they are copied to.
#include "resource.h"
#include "sheet.h"
#include "text.h"

#include <shlobj.h>

void Sheet::ChooseFolder() const
{
    const std::wstring question = Text(IDS_PICK_FOLDER);
    BROWSEINFOW browse = {};
    browse.hwndOwner = window;
    browse.lpszTitle = question.c_str();
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    if (const PIDLIST_ABSOLUTE chosen = ::SHBrowseForFolderW(&browse)) {
        wchar_t path[MAX_PATH] = {};
        if (::SHGetPathFromIDListW(chosen, path)) {
            SetText(IDC_FOLDER, path);
        }
        ::CoTaskMemFree(chosen);
    }
}

void Sheet::Copy(bool all)
{
    if (copying || gone) {
        return;
    }
    const std::filesystem::path folder = GetText(IDC_FOLDER);
    std::error_code error = std::make_error_code(std::errc::invalid_argument);
    if (folder.is_absolute()) {
        std::filesystem::create_directories(folder, error);
    }
    if (error) {
        SetText(IDC_ACTION, Text(IDS_NO_FOLDER, {GetText(IDC_FOLDER)}));
        ::SetFocus(Item(IDC_FOLDER));
        return;
    }
    std::vector<PictureFile> files;
    const WPARAM which = all ? LVNI_ALL : LVNI_SELECTED;
    for (LRESULT item = -1; (item = Send(IDC_PICTURES, LVM_GETNEXTITEM, static_cast<WPARAM>(item),
                                         static_cast<LPARAM>(which))) >= 0;) {
        files.push_back(reader->Get(static_cast<std::size_t>(item)).file);
    }
    copying = std::make_unique<CopyJob>(drive + L'\\', std::move(files), folder, [this] {
        TellChange();
    });
    ShowReading(reader->Progress());
    ::SetFocus(Item(IDCANCEL)); // the button that had it is disabled
}
