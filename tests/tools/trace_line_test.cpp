#include "tools/trace/lines/trace_line.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;

TEST(TraceLine, HasComponentTrackerAndMessage)
{
    const TraceLine line =
        ParseTraceLine("<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>");
    EXPECT_EQ(line.component, "DeviceConnect");
    EXPECT_EQ(line.tracker, "VolumeTracker");
    EXPECT_EQ(line.message, "REMOVABLE DEVICE V|E:");
    EXPECT_THAT(line.fields, ElementsAre("REMOVABLE DEVICE", "V|E:"));
    EXPECT_EQ(line.kind, LineKind::Message);
}

TEST(TraceLine, MayHaveNoTracker)
{
    const TraceLine line = ParseTraceLine("<***DeviceConnect***><1><FILE><IMG_0001.JPG>\n");
    EXPECT_EQ(line.component, "DeviceConnect");
    EXPECT_EQ(line.tracker, "");
    EXPECT_THAT(line.fields, ElementsAre("1", "FILE", "IMG_0001.JPG"));
    EXPECT_EQ(line.text, "<***DeviceConnect***><1><FILE><IMG_0001.JPG>") << "without its line end";
}

TEST(TraceLine, KnowsEveryComponent)
{
    EXPECT_EQ(ParseTraceLine("<KestraBoot><a>").component, "KestraBoot");
    EXPECT_EQ(ParseTraceLine("<KESTRABOOT><a>").component, "KestraBoot");
    EXPECT_EQ(ParseTraceLine("<KestraProxy><a>").component, "KestraProxy");
    EXPECT_EQ(ParseTraceLine("<KestraProxy:OEM><a>").component, "KestraProxy:OEM");
    EXPECT_EQ(ParseTraceLine("<kestraboot><a>").component, "");
    EXPECT_EQ(ParseTraceLine("<***DeviceConnect***><StiTracker><a>").tracker, "StiTracker");
    EXPECT_EQ(ParseTraceLine("<***DeviceConnect***><WiaTracker><a>.").tracker, "WiaTracker");
}

TEST(TraceLine, NamesThePluginThatIsServed)
{
    const TraceLine line =
        ParseTraceLine("<***DeviceConnect***><Sample phones><Devices will be detected.>");
    EXPECT_EQ(line.tracker, "Sample phones");
    EXPECT_EQ(line.message, "Devices will be detected.");
}

TEST(TraceLine, MarksFailures)
{
    EXPECT_EQ(ParseTraceLine("<KestraBoot><!!! Unable to launch Kestra.>").kind, LineKind::Failure);
    const TraceLine untagged = ParseTraceLine("Could not get the device type.");
    EXPECT_EQ(untagged.kind, LineKind::Failure);
    EXPECT_EQ(untagged.component, "DeviceConnect");
    EXPECT_EQ(untagged.tracker, "WiaTracker");
}

TEST(TraceLine, OfAStartIsTheLaunchers)
{
    const TraceLine line = ParseTraceLine(R"("C:\a.exe" module=kestrafetch params mode=direct)");
    EXPECT_EQ(line.kind, LineKind::Start);
    EXPECT_EQ(line.component, "KestraBoot");
    EXPECT_EQ(line.message, R"("C:\a.exe" module=kestrafetch params mode=direct)");
}

TEST(TraceLine, KeepsBracketsInsideAField)
{
    const TraceLine line =
        ParseTraceLine(R"(<KestraBoot><Switching application to ...<Viewer><C:\kestraboot.exe> >)");
    EXPECT_EQ(line.message, R"(Switching application to ...<Viewer><C:\kestraboot.exe> )");
}

TEST(TraceLine, MayBeCutInItsLastField)
{
    const TraceLine line = ParseTraceLine("<***DeviceConnect***><2><FOLDER><E:\\DCI");
    EXPECT_THAT(line.fields, ElementsAre("2", "FOLDER", "E:\\DCI"));
}

TEST(TraceLine, OfAnotherProgramIsAllMessage)
{
    for (const char* const text : {"hello", "", "<other><b>", "<", "<>", ">", "<<<", "<a"}) {
        const TraceLine line = ParseTraceLine(text);
        EXPECT_EQ(line.component, "") << text;
        EXPECT_EQ(line.tracker, "") << text;
        EXPECT_EQ(line.message, text);
    }
}

TEST(TraceLine, MayBeATagAlone)
{
    EXPECT_EQ(ParseTraceLine("<KestraBoot>").message, "");
    EXPECT_EQ(ParseTraceLine("<***DeviceConnect***><VolumeTracker>").tracker, "VolumeTracker");
}

} // namespace
} // namespace kestraboot::tools
