// The contact sheet with many pictures: the time to the first picture, to all facts and to all pictures,
// and the memory. The test command uses 300 small ones; KESTRABOOT_SHEET_PICTURES=10000 in the
// environment uses that many, of 1600 x 1200 pixels, and KESTRABOOT_SHEET_EMBEDDED=1 gives each of them
// a small picture, as cameras do.
#include "tests/samples/sheet_windows.h"

#include <cstdio>
#include <cstdlib>
#include <psapi.h>

namespace kestraboot::tests
{
namespace
{

constexpr int kUsual = 300;

int Asked()
{
    const char* const asked = std::getenv("KESTRABOOT_SHEET_PICTURES");
    return asked == nullptr ? kUsual : std::atoi(asked);
}

std::string LargePicture()
{
    const std::string whole = MakeJpeg(1600, 1200);
    const bool isEmbedded = std::getenv("KESTRABOOT_SHEET_EMBEDDED") != nullptr;
    return isEmbedded ? WithThumbnail(whole, MakeJpeg(160, 120)) : whole;
}

class SheetSize : public SheetWindows
{
protected:
    /// One file under many names, 1,000 in a folder as cameras do: Wine reads the folder for each new
    /// name.
    void AddPictures() const
    {
        constexpr int kInFolder = 1'000;
        const auto first = card.AddFile("IMG_10000.JPG", count > kUsual ? LargePicture() : jpeg);
        for (int i = 1; i < count; ++i) {
            const auto folder = card.Path() / "DCIM" / (std::to_string(100 + i / kInFolder) + "TEST");
            if (i == 1 || i % kInFolder == 0) {
                std::filesystem::create_directories(folder);
            }
            std::filesystem::create_hard_link(first,
                                              folder / ("IMG_" + std::to_string(10'000 + i) + ".JPG"));
        }
    }

    /// Requests all pictures, as a user does who scrolls through them, and waits for each. The newest
    /// request comes first, so the test waits for the oldest one, and polls rarely: each question costs
    /// the viewer time.
    [[nodiscard]] bool AllAreShown() const
    {
        constexpr int kPage = 100;
        for (int page = 0; page < count; page += kPage) {
            const int end = std::min(page + kPage, count);
            for (int row = page; row < end; ++row) {
                static_cast<void>(list->Image(row));
            }
            static_cast<void>(Within(
                60'000,
                [&] {
                    return list->Image(page) >= kFirstPicture;
                },
                50));
            for (int row = page; row < end; ++row) {
                if (!AwaitPicture(row)) {
                    return false;
                }
            }
        }
        return true;
    }

    void Tell(const char* what) const
    {
        PROCESS_MEMORY_COUNTERS memory = {};
        if (viewer) {
            ::GetProcessMemoryInfo(viewer->Handle(), &memory, sizeof memory);
        }
        std::printf("    %-34s %6.1f s, %3zu MB\n", what,
                    static_cast<double>(::GetTickCount64() - start) / 1000, memory.WorkingSetSize >> 20);
        std::fflush(stdout);
    }

    const int count = Asked();
    ULONGLONG start = 0;
};

TEST_F(SheetSize, ManyPicturesTakeBoundedMemory)
{
    start = ::GetTickCount64();
    AddPictures();
    Tell("the card is made after");
    start = ::GetTickCount64();
    Show();
    Tell("the window is shown after");
    EXPECT_TRUE(AwaitPicture(0));
    Tell("the first picture after");
    EXPECT_TRUE(Within(300'000, [this] {
        return list->Count() == count;
    }));
    Tell("all files found after");
    EXPECT_TRUE(AwaitPicture(count - 1)) << "the last can be asked for at once";
    Tell("the last one, asked for, after");
    EXPECT_TRUE(AwaitText(IDC_STATUS, L"Pictures: " + std::to_wstring(count) + L"."));
    Tell("all dates and sizes after");
    EXPECT_EQ(list->Count(), count);
    EXPECT_TRUE(AllAreShown());
    Tell("all pictures, page by page, after");

    PROCESS_MEMORY_COUNTERS memory = {};
    ASSERT_TRUE(::GetProcessMemoryInfo(viewer->Handle(), &memory, sizeof memory));
    std::printf("    %d pictures, at most %zu MB of memory\n", count, memory.PeakWorkingSetSize >> 20);
    EXPECT_LT(memory.PeakWorkingSetSize >> 20, 160U); // 10,000 small pictures alone would take 730 MB
    EXPECT_TRUE(AwaitStarted(app, "pictures: " + std::to_string(count) + "\n"));
}

} // namespace
} // namespace kestraboot::tests
