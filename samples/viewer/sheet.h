#pragma once

#include "copy_job.h"
#include "dialog.h"
#include "thumbnails.h"

#include <atomic>
#include <memory>

/// Shows the pictures of a drive ("E:") until its window is closed, and writes the report:
/// `reportStart`, and the pictures that it found. False if there is no window, or no report.
bool ShowSheet(const std::wstring& drive, const std::wstring& reportStart);

/// The contact sheet: a list of all pictures, and a row to copy them with. The list view requests the
/// items that it shows and keeps nothing itself. PictureReader and CopyJob work on threads of their own,
/// and report each change.
class Sheet final : public Dialog
{
public:
    // The messages that it posts to itself.
    static constexpr UINT kChanged = WM_APP; ///< the reader or the copying has news
    static constexpr UINT kAsk = WM_APP + 1; ///< the list has been drawn

    Sheet(std::wstring shownDrive, std::wstring start)
        : drive(std::move(shownDrive)), reportStart(std::move(start))
    {
    }

    [[nodiscard]] bool Reported() const { return reported; }

private:
    void OnInit() override;
    void OnCommand(unsigned id) override;
    LRESULT OnNotify(NMHDR& notice) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM value) override;
    void OnThemeChange() override { MakeThumbnails(); }

    void Close();

    // sheet_changes.cpp
    void MakeThumbnails();
    void TellChange();
    void Changed();
    void AskForThumbnails();

    // sheet_list.cpp
    void FillItem(LVITEMW& item);
    [[nodiscard]] int FindByName(const NMLVFINDITEMW& wanted) const;
    void ShowDetails() const;

    // sheet_status.cpp
    void ShowReading(const ReadingProgress& progress) const;
    void ShowCopying();
    void ShowProgress(std::uint64_t done, std::uint64_t all) const;

    // sheet_copy.cpp
    void ChooseFolder() const;
    void Copy(bool all);

    // sheet_layout.cpp
    void Layout() const;
    [[nodiscard]] SIZE Least() const;

    const std::wstring drive;
    const std::wstring reportStart;
    std::atomic<bool> reported = false;
    std::atomic<bool> changeTold = false; ///< a message is on its way
    std::unique_ptr<PictureReader> reader;
    std::unique_ptr<Thumbnails> thumbnails;
    std::unique_ptr<CopyJob> copying; ///< while it goes on
    std::vector<std::size_t> toAsk;   ///< pictures that the list shows and does not have yet
    std::size_t listed = 0;
    bool gone = false;
};
