// The file of the log option: real files, rotated and renamed.
#include "tools/trace/lines/log_file.h"

#include "tests/support/temp_folder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

namespace kestraboot::tools
{
namespace
{

using testing::StartsWith;

constexpr std::size_t kLongest = 4'096;

class ALogFile : public testing::Test
{
protected:
    std::string Contents(const wchar_t* name) const
    {
        std::ifstream in(folder.Path() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    /// Numbered lines of a hundred bytes; all of them.
    std::string WriteLines(int count, int atOnce)
    {
        std::string all;
        for (int i = 0; i < count; i += atOnce) {
            std::string some;
            for (int j = 0; j < atOnce; ++j) {
                std::string line = std::to_string(i + j);
                line.resize(99, '.');
                some += line + '\n';
            }
            log.Write(some);
            all += some;
        }
        return all;
    }

    const tests::TempFolder folder;
    const std::wstring path = (folder.Path() / L"trace.log").wstring();
    LogFile log;
};

TEST_F(ALogFile, IsAppendedTo)
{
    folder.AddFile(L"trace.log", "kept\n");
    ASSERT_TRUE(log.Open(path, {}));
    const std::string written = WriteLines(100, 1);
    EXPECT_EQ(Contents(L"trace.log"), "kept\n" + written);
}

TEST_F(ALogFile, IsRotatedBeforeItExceedsItsLength)
{
    for (const int atOnce : {1, 8, 200}) { // the last one is more than a file holds
        log = LogFile();
        std::filesystem::remove(path);
        ASSERT_TRUE(log.Open(path, {kLongest, 9}));
        const std::string written = WriteLines(200, atOnce);
        std::string all;
        for (int number = 9; number >= 0; --number) {
            const std::wstring name =
                number == 0 ? L"trace.log" : L"trace.log." + std::to_wstring(number);
            const std::string part = Contents(name.c_str());
            EXPECT_LE(part.size(), kLongest) << number;
            EXPECT_EQ(part.size() % 100, 0U) << "whole lines";
            all += part;
        }
        EXPECT_EQ(all, written) << atOnce;
        for (int number = 1; number <= 9; ++number) {
            std::filesystem::remove(path + L'.' + std::to_wstring(number));
        }
    }
}

TEST_F(ALogFile, KeepsTheGivenNumberOfOldFiles)
{
    ASSERT_TRUE(log.Open(path, {kLongest, 2}));
    const std::string written = WriteLines(200, 1);
    EXPECT_EQ(Contents(L"trace.log.2") + Contents(L"trace.log.1") + Contents(L"trace.log"),
              written.substr(written.size() - (2 * 40 + 40) * 100));
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / L"trace.log.3"));
}

TEST_F(ALogFile, BeginsAgainWithItsHeading)
{
    ASSERT_TRUE(log.Open(path, {kLongest, 9}));
    log.SetHeading("-- a day\n");
    WriteLines(50, 50);
    EXPECT_THAT(Contents(L"trace.log.1"), StartsWith("0..."))
        << "the first writer writes its heading itself";
    EXPECT_THAT(Contents(L"trace.log"), StartsWith("-- a day\n40..."));
}

TEST_F(ALogFile, KeepsGrowingIfItCannotBeRenamed)
{
    ASSERT_TRUE(log.Open(path, {kLongest, 1}));
    folder.AddFile(L"trace.log.1", "held open");
    std::string written;
    {
        const HANDLE held = ::CreateFileW((path + L".1").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                          OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        written = WriteLines(50, 1);
        EXPECT_EQ(Contents(L"trace.log"), written) << "nothing is lost";
        ::CloseHandle(held);
    }
    written += WriteLines(50, 1);
    EXPECT_EQ(Contents(L"trace.log.1") + Contents(L"trace.log"), written) << "tried again";
    EXPECT_LT(Contents(L"trace.log").size(), kLongest);
    EXPECT_FALSE(log.Failed());
}

TEST_F(ALogFile, IsCreatedAgainIfItWasRenamed)
{
    ASSERT_TRUE(log.Open(path, {}));
    log.SetHeading("-- a day\n");
    const std::string before = WriteLines(3, 1);
    std::filesystem::rename(path, folder.Path() / L"elsewhere.log");
    const std::string after = WriteLines(2, 1);
    EXPECT_EQ(Contents(L"elsewhere.log"), before);
    EXPECT_EQ(Contents(L"trace.log"), "-- a day\n" + after);
}

} // namespace
} // namespace kestraboot::tools
