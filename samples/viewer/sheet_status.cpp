// The contact sheet's messages about its work.
#include "resource.h"
#include "sheet.h"
#include "text.h"

namespace
{

/// Sentences, with a blank between two.
void Say(std::wstring& text, const std::wstring& sentence)
{
    text += (text.empty() ? L"" : L" ") + sentence;
}

std::wstring Outcome(const CopyProgress& progress, const std::wstring& drive)
{
    const std::wstring copied = std::to_wstring(progress.copied);
    const std::wstring all = std::to_wstring(progress.all);
    switch (progress.end) {
    case CopyEnd::Cancelled:
        return Text(IDS_CANCELLED, {copied, all});
    case CopyEnd::DriveGone:
        return Text(IDS_GONE_COPYING, {copied, all, drive});
    case CopyEnd::NoRoom:
        return Text(IDS_STOPPED, {copied, all, ErrorText(progress.error)});
    default:
        return Text(IDS_COPIED, {copied, all});
    }
}

} // namespace

void Sheet::ShowReading(const ReadingProgress& progress) const
{
    const std::wstring found = std::to_wstring(progress.found);
    std::wstring text;
    if (progress.gone) {
        Say(text, Text(IDS_GONE, {drive}));
    }
    if (progress.gone || (!progress.searching && progress.read == progress.found)) {
        Say(text, Text(IDS_ALL_READ, {found}));
    } else if (progress.searching) {
        Say(text, Text(IDS_LOOKING, {found}));
    } else {
        Say(text, Text(IDS_READING, {found, std::to_wstring(progress.read)}));
    }
    if (progress.unreadable != 0) {
        Say(text, Text(IDS_UNREADABLE_PICTURES, {std::to_wstring(progress.unreadable)}));
    }
    if (progress.unreadableFolders != 0 && !progress.gone) {
        Say(text, Text(IDS_UNREADABLE_FOLDERS, {std::to_wstring(progress.unreadableFolders),
                                                progress.firstUnreadableFolder.wstring()}));
    }
    SetText(IDC_STATUS, text);
    if (!copying) {
        const bool busy = !progress.gone && (progress.searching || progress.read < progress.found);
        ShowProgress(busy ? progress.read : 0, progress.found);
    }
    const bool canCopy = !copying && !progress.gone && progress.found != 0;
    ::EnableWindow(Item(IDC_COPY_ALL), canCopy);
    ::EnableWindow(Item(IDC_COPY_SELECTED), canCopy);
    ::EnableWindow(Item(IDCANCEL), copying != nullptr);
}

void Sheet::ShowCopying()
{
    if (!copying) {
        return;
    }
    const CopyProgress progress = copying->Progress();
    if (progress.end == CopyEnd::NotYet) {
        SetText(IDC_ACTION, Text(IDS_COPYING, {std::to_wstring(progress.begun),
                                               std::to_wstring(progress.all), progress.name}));
        ShowProgress(progress.bytes, progress.allBytes);
        return;
    }
    copying.reset();
    std::wstring text = Outcome(progress, drive);
    if (progress.alreadyThere != 0) {
        Say(text, Text(IDS_ALREADY_THERE, {std::to_wstring(progress.alreadyThere)}));
    }
    if (progress.failed != 0) {
        Say(text, Text(IDS_NOT_COPIED, {std::to_wstring(progress.failed), progress.firstFailed,
                                        ErrorText(progress.error)}));
    }
    SetText(IDC_ACTION, text);
    if (progress.end == CopyEnd::DriveGone) {
        reader->DriveIsGone();
    }
    ShowReading(reader->Progress());
    ::SetFocus(Item(IDC_PICTURES)); // the button that had it is disabled
}

void Sheet::ShowProgress(std::uint64_t done, std::uint64_t all) const
{
    Send(IDC_PROGRESS, PBM_SETPOS, all == 0 ? 0 : static_cast<WPARAM>(done * 1000 / all));
}
