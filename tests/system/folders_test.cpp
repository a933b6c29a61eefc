// The folders from which the boot program loads libraries and plugins.
#include "tests/system/faults.h"
#include "tests/system/system_test.h"

namespace kestraboot::tests
{
namespace
{

const std::string kHangingIsLoaded = "<hanging.mox is loaded>";
const std::string kNoPhones = "<***DeviceConnect***><NOKIA Devices will not be detected.>";

class Folders : public SystemTest
{
protected:
    /// Copies hanging.mox into a folder, with that name.
    static void Lay(const std::filesystem::path& file)
    {
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::copy_file(BuiltPrograms() / L"hanging.mox", file);
    }

    Installation app{L"App"};
    TempFolder elsewhere;
};

TEST_F(Folders, PluginsAreLoadedFromTheProgramsOwn)
{
    Lay(elsewhere.Path() / L"moxplugins" / L"nokiamanager.mox");
    ChildProcess boot(app.Proxy(), L"", WritesOn::Nothing, elsewhere.Path());
    EXPECT_TRUE(trace.Await(kNoPhones));
    EXPECT_EQ(trace.Count(kNotItsFolder), 0);
    Quit(boot);
    EXPECT_EQ(trace.Count(kHangingIsLoaded), 0);
}

TEST_F(Folders, NothingIsLoadedFromAnotherIfTheProgramsOwnCannotBeTheCurrentOne)
{
    Lay(elsewhere.Path() / L"moxplugins" / L"nokiamanager.mox");
    elsewhere.AddFile(L"OEM/album.ini", "[KestraProxyStopInstall]\r\n1\r\n");
    // A process that makes a folder its current one prevents its removal. So a handle with the right to
    // delete prevents the folder from becoming current.
    const HANDLE held = ::CreateFileW(app.folder.Path().c_str(), DELETE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    ChildProcess boot(app.Proxy(), L"", WritesOn::Nothing, elsewhere.Path());
    EXPECT_TRUE(trace.Await(kNotItsFolder));
    EXPECT_TRUE(trace.Await(kNoPhones));
    Quit(boot); // it serves nevertheless
    ::CloseHandle(held);
    EXPECT_EQ(trace.Count(kFolderSet), 0);
    EXPECT_EQ(trace.Count(kHangingIsLoaded), 0);
}

TEST_F(Folders, PluginsAreSearchedForInTheProgramsOwnIfTheLibraryTakesAnotherForIt)
{
    // It stores 259 characters of a path; a longer path, truncated, names a folder above. Wine starts no
    // such program.
    elsewhere.AddFolder(L"moxplugins");
    app.Put(L"nokiamanager.mox", L"moxplugins/nokiamanager.mox");
    const Faults faults(app, L"kestraboot.dll!SetCurrentDirectoryW=above");
    std::filesystem::copy(app.folder.Path(), elsewhere.Path() / L"below",
                          std::filesystem::copy_options::recursive);
    ChildProcess boot(elsewhere.Path() / L"below" / L"kestraboot.exe", L"", WritesOn::Nothing);
    EXPECT_TRUE(trace.Await("<***DeviceConnect***><Phones><Devices will be detected.>"));
    EXPECT_EQ(trace.Count(kFolderSet), 1);
    Quit(boot);
}

TEST_F(Folders, ALibraryIsNotSearchedForInTheCurrentOne)
{
    // A library that is nowhere else; Wine has a built-in one, which must not be loaded.
    std::filesystem::remove(L"C:\\windows\\system32\\sti.dll");
    Lay(elsewhere.Path() / L"sti.dll");
    ::SetEnvironmentVariableW(L"WINEDLLOVERRIDES", L"sti=n");
    SetWindowsVersion(L"kestraboot.exe", L"vista");
    {
        const Faults faults(app, L"kestraboot.exe!SetCurrentDirectoryW=pretend "
                                 L"kestraboot.dll!SetCurrentDirectoryW=pretend");
        ChildProcess boot(app.Proxy(), L"", WritesOn::Nothing, elsewhere.Path());
        EXPECT_TRUE(trace.Await("<***DeviceConnect***><StiTracker><STI Devices will not be detected.>"));
        Quit(boot);
    }
    ::SetEnvironmentVariableW(L"WINEDLLOVERRIDES", nullptr);
    EXPECT_EQ(trace.Count(kHangingIsLoaded), 0);
}

} // namespace
} // namespace kestraboot::tests
