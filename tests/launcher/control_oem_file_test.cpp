// The OEM file, with which the maker of a machine can forbid the install.
#include "tests/launcher/control_fixture.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

class OemFile : public Control
{
protected:
    /// Takes control beside an OEM file with these contents.
    bool TakeWith(const std::string& contents)
    {
        folder.AddFile(L"OEM/album.ini", contents);
        return Take();
    }
    /// Puts each OEM file into a new folder, because Windows may cache the last one.
    bool TakeWithSection(const std::string& section)
    {
        folderNumber += L'x';
        events.clear();
        executable = (folder.Path() / folderNumber / L"kestraboot.exe").wstring();
        folder.AddFile(folderNumber + L"/OEM/album.ini", "[KestraProxyStopInstall]\r\n" + section);
        return Take();
    }

private:
    std::wstring folderNumber;
};

TEST_F(OemFile, WhoseFirstLineBeginsWithTheNumberOneStopsTheInstall)
{
    for (const char* const line : {"1\r\n", "1", "01\r\n", " 1\r\n", "\t 1\r\n", "1x\r\n", "1\r\n2\r\n",
                                   "+1\r\n", "1=0\r\n", "1.9"}) {
        EXPECT_FALSE(TakeWithSection(line)) << line;
        EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOption, kStopping})) << line;
        EXPECT_FALSE(Claimed()) << line; // free for the next one
    }
}

TEST_F(OemFile, WithAnyOtherFirstLineDoesNot)
{
    for (const char* const line : {"2\r\n", "yes\r\n", "Stop=1\r\n", "0\r\n", "-1\r\n", "11\r\n",
                                   "x1\r\n", "2\r\n1\r\n", "4294967297\r\n"}) {
        EXPECT_TRUE(TakeWithSection(line)) << line;
        EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOption, kOrganiserStopped}))
            << line;
        EXPECT_TRUE(Claimed()) << line;
        ::CloseHandle(created);
    }
}

TEST_F(OemFile, ThatStoppedOneInstanceLetsTheNextTakeControl)
{
    EXPECT_FALSE(TakeWithSection("1\r\n"));
    EXPECT_TRUE(TakeWithSection("0\r\n"));
}

TEST_F(OemFile, WithAnEmptySectionChangesNothing)
{
    EXPECT_TRUE(TakeWithSection(""));
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOrganiserStopped}));
}

TEST_F(OemFile, WithoutTheSectionChangesNothing)
{
    EXPECT_TRUE(TakeWith("[Another]\r\n1\r\n[KestraProxyStopInstall2]\r\n1\r\n"));
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOrganiserStopped}));
}

TEST_F(OemFile, ThatIsEmptyChangesNothing)
{
    EXPECT_TRUE(TakeWith(""));
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOrganiserStopped}));
}

TEST_F(OemFile, ThatIsAFolderChangesNothing)
{
    folder.AddFolder(L"OEM/album.ini");
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOrganiserStopped}));
}

TEST_F(OemFile, OfAnotherNameIsNotRead)
{
    folder.AddFile(L"album.ini", "[KestraProxyStopInstall]\r\n1\r\n");
    EXPECT_TRUE(Take());
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kNoOemFile, kOrganiserStopped}));
}

TEST_F(OemFile, OfMoreThan64KilobytesIsReadLikeAnyOther)
{
    std::string filler;
    for (int section = 0; filler.size() < 100'000; ++section) {
        filler += "[Section" + std::to_string(section) + "]\r\nkey=value\r\n";
    }
    EXPECT_FALSE(TakeWith(filler + "[KestraProxyStopInstall]\r\n1\r\n"));
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOption, kStopping}));
}

TEST_F(OemFile, WithALineOf64KilobytesIsCutWithoutAnOverrun)
{
    EXPECT_TRUE(TakeWithSection("2" + std::string(70'000, 'x') + "\r\n"));
    EXPECT_EQ(events.at(3), kOption);
    ::CloseHandle(created);
    EXPECT_FALSE(TakeWithSection("1" + std::string(70'000, 'x') + "\r\n"));
}

TEST_F(OemFile, IsReadIntoOneBufferOf261Characters)
{
    const FAKE_IMPORT(GetPrivateProfileStringW)
        names([](const wchar_t* section, const wchar_t* key, const wchar_t* fallback, wchar_t* buffer,
                 DWORD capacity, const wchar_t* file) -> DWORD {
            EXPECT_EQ(section, nullptr);
            EXPECT_EQ(key, nullptr);
            EXPECT_EQ(fallback, nullptr);
            EXPECT_EQ(capacity, 261U);
            EXPECT_STREQ(file, L".\\OEM\\album.ini");
            std::wmemset(buffer, L'9', capacity); // fills the whole buffer
            return capacity - 2;
        });
    const FAKE_IMPORT(GetPrivateProfileSectionW)
        section([&](const wchar_t* name, wchar_t* buffer, DWORD capacity, const wchar_t* file) -> DWORD {
            EXPECT_EQ(names.Calls(), 1);
            EXPECT_STREQ(name, L"KestraProxyStopInstall");
            EXPECT_EQ(capacity, 260U);
            EXPECT_STREQ(file, L".\\OEM\\album.ini");
            std::wmemset(buffer, L' ', capacity); // without a terminator
            buffer[capacity - 1] = L'1';
            return capacity - 2;
        });
    EXPECT_FALSE(TakeWith("[KestraProxyStopInstall]\r\n1\r\n"));
    EXPECT_EQ(section.Calls(), 1);
    EXPECT_EQ(events, (Events{kTookControl, kFolderSet, kOemFile, kOption, kStopping}));
}

} // namespace
} // namespace kestraboot
