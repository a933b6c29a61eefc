// Changes in the contact sheet: pictures that were found and decoded, its size and its colours.
#include "report.h"
#include "resource.h"
#include "sheet.h"

/// For the size and the colours that the window has now.
void Sheet::MakeThumbnails()
{
    const auto scaled = [this](int length) {
        return ::MulDiv(length, Dpi(), 96);
    };
    const ThumbnailStyle style = {static_cast<unsigned>(scaled(160)), static_cast<unsigned>(scaled(120)),
                                  static_cast<std::uint32_t>(GetRValue(theme.field) << 16 |
                                                             GetGValue(theme.field) << 8 |
                                                             GetBValue(theme.field))};
    auto made = std::make_unique<Thumbnails>(style, theme);
    Send(IDC_PICTURES, LVM_SETIMAGELIST, LVSIL_NORMAL, reinterpret_cast<LPARAM>(made->List()));
    Send(IDC_PICTURES, LVM_SETICONSPACING, 0, MAKELPARAM(scaled(176), scaled(160)));
    thumbnails = std::move(made);
    if (reader) {
        reader->SetStyle(style);
        ::InvalidateRect(Item(IDC_PICTURES), nullptr, TRUE);
        return;
    }
    const auto tell = [this] {
        TellChange();
    };
    const auto write = [this](const std::vector<std::filesystem::path>& all) {
        reported = AppendToReport(reportStart + DescribePictures(all));
    };
    reader = std::make_unique<PictureReader>(drive + L'\\', style, tell, write);
}

/// From any thread. One message is enough, however much changes.
void Sheet::TellChange()
{
    if (!changeTold.exchange(true)) {
        ::PostMessageW(window, kChanged, 0, 0);
    }
}

void Sheet::Changed()
{
    changeTold = false; // before it reads: a change from here on is reported again
    const ReadingProgress progress = reader->Progress();
    gone = progress.gone;
    if (progress.found != listed) {
        const bool isFirst = listed == 0;
        listed = progress.found;
        Send(IDC_PICTURES, LVM_SETITEMCOUNT, listed, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
        // Wine's list view leaves new items in its corner, and draws all of them there, until it is
        // told.
        Send(IDC_PICTURES, LVM_ARRANGE, LVA_DEFAULT);
        if (isFirst) { // the arrow keys begin here
            LVITEMW first = {};
            first.state = first.stateMask = LVIS_FOCUSED;
            Send(IDC_PICTURES, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&first));
        }
    }
    for (const Thumbnail& thumbnail : reader->TakeThumbnails()) {
        thumbnails->Put(thumbnail);
        Send(IDC_PICTURES, LVM_REDRAWITEMS, thumbnail.index, static_cast<LPARAM>(thumbnail.index));
    }
    ShowReading(progress);
    ShowDetails();
    ShowCopying();
    // Posted messages precede painting. While changes come without a pause, the list would not be drawn,
    // and would not request the pictures that it shows.
    ::UpdateWindow(Item(IDC_PICTURES));
    AskForThumbnails();
}

/// In the order in which they are shown: the reader takes the newest request first.
void Sheet::AskForThumbnails()
{
    for (auto index = toAsk.rbegin(); index != toAsk.rend(); ++index) {
        reader->Want(*index);
    }
    toAsk.clear();
}
