#pragma once

#include "choices.h"
#include "dialog.h"

#include <commctrl.h>

/// Asks which application shall have the device, and starts it. Standard controls: a list of name and
/// description with icons, "always use this one", open, cancel.
class Chooser final : public Dialog
{
public:
    explicit Chooser(LaunchRequest asked) : request(std::move(asked)) {}
    ~Chooser() override;

private:
    void OnInit() override;
    void OnCommand(unsigned id) override;
    LRESULT OnNotify(NMHDR& notice) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM value) override;

    void FillList();
    void AddRow(int row);
    void FitColumns() const;
    /// Its place in `choices`; -1 where none is selected.
    [[nodiscard]] int Selected() const;
    void FollowSelection() const;
    void Open();

    LaunchRequest request;
    CKestraBootCommandHandler library;
    std::vector<Choice> choices;
    HIMAGELIST icons = nullptr;
};
