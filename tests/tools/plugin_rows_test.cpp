// The rows of --check for the files beside a boot program.
#include "tests/tools/rows.h"

namespace kestraboot::tools
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

PluginFile Plugin(const std::wstring& name)
{
    PluginFile plugin;
    plugin.name = name;
    plugin.file.image.emplace();
    plugin.file.image->machine = kMachine64Bit;
    plugin.file.image->isLibrary = true;
    plugin.file.image->exports = {"FxPluginMain"};
    plugin.version = L"2.1.0.0";
    return plugin;
}

class CheckedPlugins : public testing::Test
{
protected:
    CheckedPlugins() : folder{true, {Plugin(L"nokiamanager.mox"), Plugin(L"p.mox")}} {}

    PluginFile& Second() { return folder.files[1]; }
    std::string SecondLine() { return Lines(PluginRows(folder)).at(2); }

    PluginFolder folder;
};

TEST_F(CheckedPlugins, AreFineWithAllThatTheyNeed)
{
    EXPECT_THAT(Lines(PluginRows(folder)),
                ElementsAre(StartsWith("fine plugins "), StartsWith("fine plugin nokiamanager.mox: "),
                            AllOf(StartsWith("fine plugin p.mox: is a 64-bit plugin"),
                                  HasSubstr("version 2.1.0.0. No other one has its bytes"))));
    Second().version.reset();
    EXPECT_THAT(SecondLine(), HasSubstr("no version resource"));
}

TEST_F(CheckedPlugins, MayBeNone)
{
    EXPECT_THAT(Lines(PluginRows({true, {}})),
                ElementsAre(StartsWith("fine plugins : there is no plugin")));
    EXPECT_THAT(Lines(PluginRows({})), ElementsAre(StartsWith("fine plugins : there is no folder")));
}

TEST_F(CheckedPlugins, WaitForThePhoneManager)
{
    folder.files.erase(folder.files.begin());
    EXPECT_THAT(Lines(PluginRows(folder)),
                ElementsAre(StartsWith("broken plugins : there is no nokiamanager.mox"),
                            StartsWith("fine plugin p.mox")));
    folder.files[0].name = L"NokiaManager.MOX";
    EXPECT_THAT(Lines(PluginRows(folder)).at(0), StartsWith("fine "));
}

TEST_F(CheckedPlugins, AreBrokenIfTheHostCannotLoadThem)
{
    Second().missing = {{"a.dll", "", L"cannot be found"}, {"b.dll", "c.dll", L"is 32-bit"}};
    EXPECT_THAT(
        SecondLine(),
        AllOf(StartsWith("broken plugin p.mox: needs a.dll, which cannot be found and b.dll (for "
                         "c.dll), which is 32-bit -> "),
              HasSubstr("beside the boot program")));
    Second().file.image->exports = {"fxpluginmain"};
    EXPECT_THAT(SecondLine(), StartsWith("broken plugin p.mox: has no entry point FxPluginMain"));
    Second().file.image->isLibrary = false;
    EXPECT_THAT(SecondLine(), StartsWith("broken plugin p.mox: is a program, not a library"));
    Second().file.image->machine = kMachine32Bit;
    EXPECT_THAT(SecondLine(), StartsWith("broken plugin p.mox: is 32-bit; the boot program is 64-bit"));
    Second().file = {std::nullopt, L"is no program file"};
    EXPECT_THAT(SecondLine(), StartsWith("broken plugin p.mox: is no program file"));
}

TEST_F(CheckedPlugins, AreSuspiciousIfTwoHaveTheSameBytes)
{
    Second().sameBytesAs = L"nokiamanager.mox";
    EXPECT_THAT(SecondLine(), StartsWith("suspicious plugin p.mox: is byte for byte nokiamanager.mox"));
}

TEST_F(CheckedPlugins, AreSuspiciousIfTwoHaveTheSameIdentifier)
{
    folder.files[0].originalName = L"PHONES.mox";
    Second().originalName = L"phones.mox";
    EXPECT_THAT(Lines(PluginRows(folder)).at(1), StartsWith("fine ")) << "the first one is used";
    EXPECT_THAT(SecondLine(), StartsWith("suspicious plugin p.mox: and nokiamanager.mox say"));
    Second().originalName = L"other.mox";
    EXPECT_THAT(SecondLine(), StartsWith("fine "));
}

} // namespace
} // namespace kestraboot::tools
