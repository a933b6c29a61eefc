#include "tools/trace/lines/start_line.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

void Expect(std::string_view text, const char* application, const char* mode, const char* kind,
            const char* device)
{
    const std::optional<StartLine> line = ParseStartLine(text);
    ASSERT_TRUE(line) << text;
    EXPECT_EQ(line->application, application);
    EXPECT_EQ(line->mode, mode);
    EXPECT_EQ(line->kind, kind);
    EXPECT_EQ(line->device, device);
}

TEST(StartLine, NamesApplicationModeAndDevice)
{
    Expect(
        R"("C:\My Apps\viewer.exe" module=kestrafetch params mode=direct devType=volume priDevId="E:")",
        R"(C:\My Apps\viewer.exe)", "direct", "volume", "E:");
}

TEST(StartLine, MayNameNoDevice)
{
    Expect(R"("C:\viewer.exe" module=kestrafetch params mode=select)", R"(C:\viewer.exe)", "select", "",
           "");
}

TEST(StartLine, KeepsBlanksAndQuotesInsideAnIdentifier)
{
    Expect(R"("a.exe" module=kestrafetch params mode=direct devType=mobile priDevId="My "own" phone")",
           "a.exe", "direct", "mobile", R"(My "own" phone)");
    Expect(R"("a.exe" module=kestrafetch params mode=direct devType= priDevId="Scan 1")", "a.exe",
           "direct", "", "Scan 1");
}

TEST(StartLine, MayBeTheLegacyOrganisers)
{
    Expect(R"("C:\V\VelProxy.exe" -d "V|E:")", R"(C:\V\VelProxy.exe)", "", "volume", "E:");
    Expect(R"("C:\V\VelProxy.exe" -d "S|{6BDD}\0001")", R"(C:\V\VelProxy.exe)", "", "scanner",
           R"({6BDD}\0001)");
    Expect(R"("C:\V\VelProxy.exe" -d "C|")", R"(C:\V\VelProxy.exe)", "", "camera", "");
}

TEST(StartLine, OfTheLegacyOrganiserKnowsVolumesAndScanners)
{
    EXPECT_FALSE(ParseStartLine(R"("VelProxy.exe" -d "V|E:")")->kindGuessed);
    EXPECT_FALSE(ParseStartLine(R"("VelProxy.exe" -d "S|a")")->kindGuessed);
    EXPECT_TRUE(ParseStartLine(R"("VelProxy.exe" -d "C|a")")->kindGuessed);
}

TEST(StartLine, IsNoOtherText)
{
    for (const char* const text :
         {"", "\"", "\"C:\\a.exe\"", "\"C:\\a.exe\" -d E:", "\"C:\\a.exe\" -d \"E:\"",
          "<KestraBoot><\" module=kestrafetch params mode=direct>", "\"a.exe\" -d \"V|E:"}) {
        EXPECT_FALSE(ParseStartLine(text)) << text;
    }
}

} // namespace
} // namespace kestraboot::tools
