// The request to quit goes to the first window with the title of a boot executable.
#include "registry/other_instances.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestraboot
{
namespace
{

struct Message {
    UINT message;
    WPARAM wide;
    LPARAM large;
    bool operator==(const Message&) const = default;
};
std::vector<Message> quitMessages;

LRESULT CALLBACK RecordQuit(HWND window, UINT message, WPARAM wide, LPARAM large)
{
    if (message == WM_QUIT) {
        quitMessages.push_back({message, wide, large});
        return 0;
    }
    return ::DefWindowProcW(window, message, wide, large);
}

/// A hidden top-level window of this thread.
class Window
{
public:
    explicit Window(const std::wstring& title)
    {
        static const ATOM windowClass = [] {
            WNDCLASSW description = {};
            description.lpfnWndProc = RecordQuit;
            description.hInstance = ::GetModuleHandleW(nullptr);
            description.lpszClassName = L"KestrabootBootWindowTest";
            return ::RegisterClassW(&description);
        }();
        handle = ::CreateWindowExW(0, MAKEINTATOM(windowClass), title.c_str(), WS_OVERLAPPED, 0, 0, 0, 0,
                                   nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
        EXPECT_NE(handle, nullptr);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { ::DestroyWindow(handle); }
    HWND handle;
};

struct BootWindow : testing::Test {
    BootWindow() { quitMessages.clear(); }
};

TEST_F(BootWindow, IsSentTheRequestToQuitAndEndsTheEnumeration)
{
    const Window window(L"Corvane Kestrafetch Boot");
    EXPECT_EQ(CloseBootWindowsProc(window.handle, 0), FALSE);
    // The message arrived before the callback returned, so it was sent to the window and not posted to
    // its thread.
    EXPECT_EQ(quitMessages, (std::vector<Message>{{0x12, 0, 0}}));
    MSG posted = {};
    EXPECT_FALSE(::PeekMessageW(&posted, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE));
}

TEST_F(BootWindow, IsKnownByItsTitleInAnyCase)
{
    const Window window(L"CORVANE kestrafetch boot");
    EXPECT_EQ(CloseBootWindowsProc(window.handle, 99), FALSE);
    EXPECT_EQ(quitMessages.size(), 1U);
}

TEST_F(BootWindow, IsNoneWithAnotherTitle)
{
    for (const std::wstring& title :
         {std::wstring(), std::wstring(L"Corvane Kestrafetch Boot 2"),
          std::wstring(L"Corvane Kestrafetch"), std::wstring(L" Corvane Kestrafetch Boot"),
          std::wstring(5000, L't')}) {
        const Window window(title);
        EXPECT_EQ(CloseBootWindowsProc(window.handle, 0), TRUE);
    }
    EXPECT_EQ(CloseBootWindowsProc(nullptr, 0), TRUE); // the window was destroyed in the meantime
    EXPECT_TRUE(quitMessages.empty());
}

TEST_F(BootWindow, AloneIsAskedToQuitIfThereAreSeveral)
{
    const Window other(L"Something else");
    const Window first(L"Corvane Kestrafetch Boot");
    const Window second(L"Corvane Kestrafetch Boot");
    ::EnumThreadWindows(::GetCurrentThreadId(), CloseBootWindowsProc, 0);
    EXPECT_EQ(quitMessages.size(), 1U);
}

} // namespace
} // namespace kestraboot
