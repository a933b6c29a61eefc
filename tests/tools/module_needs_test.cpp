#include "tools/ctl/check/module_needs.h"

#include <gmock/gmock.h>

#include <map>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

PeImage Needing(std::vector<std::string> needs)
{
    PeImage image;
    image.machine = kMachine64Bit;
    image.needs = std::move(needs);
    return image;
}

class Needs : public testing::Test
{
protected:
    Needs() { Put("KERNEL32.dll", Needing({"ntdll.dll"}), true); }

    void Put(const std::string& name, const PeImage& image, bool ofWindows = false)
    {
        found[name] = {ofWindows, {image, L""}};
    }

    std::vector<std::string> Missing(const PeImage& plugin)
    {
        std::vector<std::string> lines;
        for (const MissingModule& module : MissingModules(plugin, [&](const std::string& name) {
                 ++asked;
                 const auto at = found.find(name);
                 return at != found.end() ? std::optional(at->second) : std::nullopt;
             })) {
            std::string why;
            for (const wchar_t character : module.why) {
                why += static_cast<char>(character);
            }
            lines.push_back(module.name + " for " +
                            (module.neededBy.empty() ? "itself" : module.neededBy) + ": " + why);
        }
        return lines;
    }

    std::map<std::string, FoundModule> found;
    int asked = 0;
};

TEST_F(Needs, AreMetByWindows)
{
    EXPECT_THAT(Missing(Needing({"KERNEL32.dll"})), IsEmpty());
    EXPECT_EQ(asked, 1) << "the imports of Windows' own libraries are not checked";
}

TEST_F(Needs, AreSearchedForInTheFoundLibrariesToo)
{
    Put("a.dll", Needing({"KERNEL32.dll", "b.dll", "gone.dll"}));
    Put("b.dll", Needing({"a.dll", "far.dll"}));
    EXPECT_THAT(Missing(Needing({"a.dll", "lost.dll"})),
                ElementsAre("lost.dll for itself: cannot be found",
                            "gone.dll for a.dll: cannot be found",
                            "far.dll for b.dll: cannot be found"));
}

TEST_F(Needs, AreNotMetByAFileThatCannotBeLoaded)
{
    PeImage narrow = Needing({"x.dll"});
    narrow.machine = kMachine32Bit;
    Put("old.dll", narrow);
    found["text.dll"] = {false, {std::nullopt, L"is no program file"}};
    EXPECT_THAT(Missing(Needing({"old.dll", "text.dll"})),
                ElementsAre("old.dll for itself: is 32-bit", "text.dll for itself: is no program file"));
}

TEST_F(Needs, AreListedOnceWhateverTheCase)
{
    EXPECT_THAT(Missing(Needing({"Lost.dll", "LOST.DLL"})),
                ElementsAre("Lost.dll for itself: cannot be found"));
}

TEST_F(Needs, LeaveOutTheNamesThatTheLoaderAnswersItself)
{
    EXPECT_THAT(Missing(Needing({"api-ms-win-crt-runtime-l1-1-0.dll", "EXT-MS-WIN-X.dll"})), IsEmpty());
    EXPECT_EQ(asked, 0);
}

} // namespace
} // namespace kestraboot::tools
