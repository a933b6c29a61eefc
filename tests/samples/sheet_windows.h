// The contact sheet on a card in Wine's card reader.
#pragma once

#include "tests/samples/sample_windows.h"
#include "tests/samples/test_pictures.h"

namespace kestraboot::tests
{

class SheetWindows : public SampleWindows
{
protected:
    ~SheetWindows() override;

    /// Inserts the card and starts the viewer for it.
    void Show();

    [[nodiscard]] HWND Item(int id) const { return ::GetDlgItem(window, id); }

    /// Waits until a control shows that text.
    [[nodiscard]] testing::AssertionResult AwaitText(int id, const std::wstring& text) const;
    /// Waits until the list shows the decoded picture.
    [[nodiscard]] testing::AssertionResult AwaitPicture(int row) const;

    static constexpr int kFirstPicture =
        2; ///< in the image list: behind the signs "waiting" and "unreadable"

    const std::string jpeg = MakeJpeg(64, 48);
    Installation app{L"Mail Albums"};
    TempFolder card;
    TempFolder target;
    std::unique_ptr<ChildProcess> viewer;
    std::unique_ptr<RemoteList> list;
    HWND window = nullptr;
};

} // namespace kestraboot::tests
