// The verdicts on arrivals, derived from the lines that the library writes.
#include "tools/trace/arrivals/arrival_verdicts.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kService = "<***DeviceConnect***>";
const std::string kVolumes = kService + "<VolumeTracker>";
const std::string kNotice = kVolumes + "<DEVICE ARRIVED>";
const std::string kFound = kVolumes + "<REMOVABLE DEVICE><V|E:>";
const std::string kFits = kService + "<Supported file format is found on device.>";
const std::string kFails = kService + "<Supported media content check fails...Trying again.>";
const std::string kNothing = kService + "<Volume does not contain supported media content.>";
const std::string kRefused = kVolumes + "<Launch not possible>.";
const std::string kPolling = kVolumes + "<Entering in polling mode.>";
const std::string kNoneFound =
    "<KestraBoot><!!! No Kestra Compatible application found. This situation should be avoided.>";
const std::string kRunKeyDeleted =
    "<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>";

std::string Start(const std::string& kind, const std::string& device)
{
    return "\"C:\\v.exe\" module=kestrafetch params mode=direct devType=" + kind + " priDevId=\"" +
           device + "\"";
}

class Verdicts : public testing::Test
{
protected:
    /// One line after another, ten milliseconds apart.
    void Lines(const std::vector<std::string>& lines, std::uint32_t process = 7)
    {
        for (const std::string& line : lines) {
            now += 10;
            verdicts.Take({{now, 0, now}, process, "kestraboot.exe", line});
        }
    }

    /// The same for a process of another name.
    void Speaker(const std::string& name, const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines) {
            now += 10;
            verdicts.Take({{now, 0, now}, 99, name, line});
        }
    }

    const Arrival& Only()
    {
        EXPECT_THAT(told, SizeIs(1));
        static const Arrival none;
        return told.size() == 1 ? told[0] : none;
    }

    std::int64_t now = 1'000'000;
    std::vector<Arrival> told;
    ArrivalVerdicts verdicts{[this](const Arrival& arrival) {
        told.push_back(arrival);
    }};
};

TEST_F(Verdicts, OfACardThatStartsAnApplication)
{
    Lines({kNotice, kFound, kService + "<1><FILE><notes.txt>\n", kService + "<1><FOLDER><E:\\DCIM>\n",
           kService + "<2><FILE><IMG_0001.JPG>\n", kFits});
    EXPECT_THAT(told, IsEmpty());
    Lines({Start("volume", "E:")});
    const Arrival& arrival = Only();
    EXPECT_EQ(arrival.processId, 7U);
    EXPECT_EQ(arrival.processName, "kestraboot.exe");
    EXPECT_EQ(arrival.tracker, kVolumeTracker);
    EXPECT_EQ(arrival.source, "REMOVABLE DEVICE");
    EXPECT_EQ(arrival.kind, "volume");
    EXPECT_EQ(arrival.device, "E:");
    EXPECT_EQ(arrival.decision, Decision::Accepted);
    EXPECT_STREQ(arrival.rule, kSupportedFile);
    EXPECT_EQ(arrival.file, "IMG_0001.JPG");
    EXPECT_EQ(arrival.attempts, 1U);
    EXPECT_EQ(arrival.folders, 1U);
    EXPECT_EQ(arrival.files, 2U);
    EXPECT_EQ(arrival.deepestLevel, 2U);
    EXPECT_STREQ(arrival.outcome, kStarted);
    EXPECT_EQ(arrival.application, "C:\\v.exe");
    EXPECT_EQ(arrival.mode, "direct");
    EXPECT_EQ(arrival.startLine, Start("volume", "E:"));
    EXPECT_EQ(arrival.noticed.upMilliseconds, 1'000'010);
    EXPECT_EQ(arrival.millisecondsToEnd, 60) << "counted from the notification, which is the first line";
    EXPECT_EQ(verdicts.OpenCount(), 0U);
}

TEST_F(Verdicts, CountTheDecidingAttemptAlone)
{
    Lines({kFound, kService + "<1><FOLDER><E:\\A>\n", kService + "<2><FILE><a.txt>\n", kFails,
           kService + "<1><FILE><b.jpg>\n", kFits, Start("volume", "E:")});
    EXPECT_EQ(Only().attempts, 2U);
    EXPECT_EQ(Only().folders, 0U);
    EXPECT_EQ(Only().files, 1U);
    EXPECT_EQ(Only().deepestLevel, 1U);
}

TEST_F(Verdicts, OfACardWithoutPictures)
{
    const std::string file = kService + "<1><FILE><notes.txt>\n";
    Lines({kFound, file, kFails, file, kFails, file, kFails, kNothing, kRefused});
    EXPECT_EQ(Only().decision, Decision::Refused);
    EXPECT_STREQ(Only().rule, kNoSupportedFile);
    EXPECT_EQ(Only().attempts, 3U);
    EXPECT_EQ(Only().files, 1U);
    EXPECT_EQ(Only().millisecondsToEnd, 80);
}

TEST_F(Verdicts, OfACardOnWhichNothingCanBeListed)
{
    Lines({kFound, kFails, kFails, kFails, kNothing, kRefused});
    EXPECT_STREQ(Only().rule, kNothingListed);
}

TEST_F(Verdicts, OfACardThatWasRemovedInTheMiddle)
{
    Lines({kFound, kService + "<1><FILE><a.txt>\n", kFails, kFails, kFails, kNothing, kRefused});
    EXPECT_STREQ(Only().rule, kNothingListed);
    EXPECT_EQ(Only().files, 0U);
}

TEST_F(Verdicts, OfASearchThatIsDisabled)
{
    const std::string off = kService + "<Suppressing auto launch...>";
    Lines({kFound, off, kFails, off, kFails, off, kFails, kNothing, kRefused});
    EXPECT_STREQ(Only().rule, kSearchOff);
}

TEST_F(Verdicts, OfADriveThatIsNoCardReader)
{
    Lines({kFound, kService + "<Unsupported volume found.>", kRefused});
    EXPECT_EQ(Only().decision, Decision::Refused);
    EXPECT_STREQ(Only().rule, kUnfitDrive);
    EXPECT_EQ(Only().attempts, 0U);
}

TEST_F(Verdicts, StateThatTheReasonWasNotSeen)
{
    Lines({kFound, kRefused});
    EXPECT_STREQ(Only().rule, kReasonNotSeen);
}

TEST_F(Verdicts, IgnoreASearchWhoseBeginningWasNotSeen)
{
    Lines({kService + "<1><FILE><a.txt>\n", kFails, kNothing, kRefused, kPolling});
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Verdicts, DoNotUseAnOldNotificationForTheCard)
{
    Lines({kNotice});
    now += ProcessArrivals::kLongestNotice;
    Lines({kFound, kRefused, kFound, kRefused});
    EXPECT_EQ(told[0].millisecondsToEnd, 10);
    EXPECT_EQ(told[1].millisecondsToEnd, 10);
}

TEST_F(Verdicts, UseANotificationForOneCardOnly)
{
    Lines({kNotice, kFound, kRefused, kFound, kRefused});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].millisecondsToEnd, 20);
    EXPECT_EQ(told[1].millisecondsToEnd, 10);
}

TEST_F(Verdicts, UseTheFirstOfSeveralNotifications)
{
    Lines({kNotice, kNotice, kFound, kRefused});
    EXPECT_EQ(Only().millisecondsToEnd, 30);
}

TEST_F(Verdicts, OfImagingDevices)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|{6BDD}\\0001>.", Start("camera", "{6BDD}\\0001"),
           kService + "<StiTracker><WIA DEVICE><S|scan1>", Start("scanner", "scan1")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].tracker, kWiaTracker);
    EXPECT_EQ(told[0].kind, "camera");
    EXPECT_EQ(told[0].device, "{6BDD}\\0001");
    EXPECT_EQ(told[0].decision, Decision::Accepted);
    EXPECT_STREQ(told[0].rule, kImagingDevice);
    EXPECT_STREQ(told[0].outcome, kStarted);
    EXPECT_EQ(told[1].tracker, kStiTracker);
    EXPECT_EQ(told[1].kind, "scanner");
    EXPECT_EQ(told[1].device, "scan1");
}

TEST_F(Verdicts, OfTwainSources)
{
    Lines({kService + "<StiTracker><TWAIN DEVICE><C|\"My camera\">", Start("camera", "My camera"),
           kService + "<StiTracker><TWAIN DEVICE><\"My source\">", Start("", "y source\"")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].device, "My camera");
    EXPECT_STREQ(told[0].rule, kTwainSource);
    EXPECT_STREQ(told[0].outcome, kStarted);
    EXPECT_EQ(told[1].tracker, kStiTracker);
    EXPECT_EQ(told[1].kind, "");
    EXPECT_EQ(told[1].device, "y source\"") << "the library removes two characters even without a kind";
    EXPECT_STREQ(told[1].outcome, kStarted);
}

TEST_F(Verdicts, OfADeviceOfNoUsableType)
{
    Lines({"Could not get the device type.", kService + "<StiTracker><Could not get the device type.>"});
    ASSERT_THAT(told, SizeIs(2));
    for (const Arrival& arrival : told) {
        EXPECT_EQ(arrival.decision, Decision::Refused);
        EXPECT_STREQ(arrival.rule, kNoDeviceType);
        EXPECT_EQ(arrival.device, "");
    }
    EXPECT_EQ(told[0].tracker, kWiaTracker);
    EXPECT_EQ(told[1].tracker, kStiTracker);
}

TEST_F(Verdicts, OfAPhoneThatAPluginReports)
{
    Lines({Start("mobile", "phone 1")});
    EXPECT_EQ(Only().tracker, kPluginTracker);
    EXPECT_EQ(Only().kind, "mobile");
    EXPECT_EQ(Only().device, "phone 1");
    EXPECT_STREQ(Only().rule, kPluginReport);
    EXPECT_STREQ(Only().outcome, kStarted);
}

TEST_F(Verdicts, AssignAStartToTheDeviceThatItNames)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>.", kFound, kService + "<1><FILE><a.jpg>\n", kFits,
           Start("volume", "E:"), Start("mobile", "one"), Start("camera", "one")});
    ASSERT_THAT(told, SizeIs(3));
    EXPECT_EQ(told[0].tracker, kVolumeTracker);
    EXPECT_EQ(told[1].tracker, kPluginTracker) << "a phone of the same name is another device";
    EXPECT_EQ(told[2].tracker, kWiaTracker);
}

TEST_F(Verdicts, MatchAnIdentityThatTheTraceCut)
{
    const std::string whole(300, 'x');
    Lines({(kService + "<WiaTracker><WIA DEVICE><C|" + whole).substr(0, 259), Start("camera", whole)});
    EXPECT_EQ(Only().tracker, kWiaTracker);
    EXPECT_EQ(Only().device, whole);
    EXPECT_STREQ(Only().outcome, kStarted);
}

TEST_F(Verdicts, OfALaunchThatTheLauncherRefuses)
{
    const std::pair<std::string, const char*> refusals[] = {
        {"<KestraBoot><!!! Unable to launch Kestra.>", kOutsideConsoleSession},
        {"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>", kNoMode},
        {"<KestraBoot><!!! No Kestra application found for this Kestra proxy. This situation should be "
         "avoided.>",
         kNoOwnApplication},
        {"<KestraBoot><!!! Unable to start the process.>", kOrganiserNotStarted},
        {kNoneFound, kNoApplication},
    };
    for (const auto& [line, outcome] : refusals) {
        told.clear();
        Lines({kFound, kFits, line});
        EXPECT_EQ(Only().decision, Decision::Accepted) << line;
        EXPECT_STREQ(Only().outcome, outcome) << line;
        EXPECT_EQ(Only().startLine, "");
    }
}

TEST_F(Verdicts, AssignARefusalToTheDeviceThatWaitedLongest)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>.", kService + "<StiTracker><WIA DEVICE><C|two>",
           "<KestraBoot><!!! Unable to launch Kestra.>", Start("camera", "two")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].device, "one");
    EXPECT_STREQ(told[0].outcome, kOutsideConsoleSession);
    EXPECT_STREQ(told[1].outcome, kStarted);
}

TEST_F(Verdicts, IgnoreTheLinesOfAnUninstall)
{
    Lines({kNoneFound, kRunKeyDeleted});
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Verdicts, OfACardThatFindsNoApplicationLeft)
{
    // The search reads the application's settings first, and the process ends there.
    Lines({kNotice, kFound, kNoneFound, kRunKeyDeleted});
    EXPECT_EQ(Only().tracker, kVolumeTracker);
    EXPECT_EQ(Only().decision, Decision::Refused);
    EXPECT_STREQ(Only().rule, kNoApplication);
    EXPECT_STREQ(Only().outcome, "");
    EXPECT_EQ(Only().millisecondsToEnd, 20);
    EXPECT_EQ(verdicts.OpenCount(), 0U);
}

TEST_F(Verdicts, OfAllWaitingDevicesIfNoApplicationIsLeft)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>.", kFound,
           kService + "<StiTracker><WIA DEVICE><C|two>", kNoneFound, kRunKeyDeleted});
    ASSERT_THAT(told, SizeIs(3));
    EXPECT_STREQ(told[0].outcome, kNoApplication);
    EXPECT_STREQ(told[1].rule, kNoApplication);
    EXPECT_STREQ(told[2].outcome, kNoApplication);
}

TEST_F(Verdicts, CountTheWaitFromTheAcceptance)
{
    Lines({kFound, kService + "<WiaTracker><WIA DEVICE><C|one>.", kFits,
           "<KestraBoot><!!! Unable to launch Kestra.>"});
    EXPECT_EQ(Only().device, "one") << "the card was found first, but its scan took longer";
}

TEST_F(Verdicts, ForgetANotificationThatLedToNothing)
{
    Lines({kNotice});
    now += ProcessArrivals::kLongestNotice;
    Lines({kNotice, kFound, kRefused});
    EXPECT_EQ(Only().millisecondsToEnd, 20) << "counted from the notification of the card itself";
}

TEST_F(Verdicts, OfDevicesThatTheOrganiserGetsAsCameras)
{
    Lines({kService + "<StiTracker><TWAIN DEVICE><\"My source\">",
           "\"C:\\V\\VelProxy.exe\" -d \"C|y source\"\""});
    EXPECT_EQ(Only().tracker, kStiTracker);
    EXPECT_EQ(Only().kind, "");
    EXPECT_STREQ(Only().outcome, kStarted);
    told.clear();
    Lines({kService + "<StiTracker><WIA DEVICE><S|one>", "\"C:\\V\\VelProxy.exe\" -d \"C|one\""});
    EXPECT_EQ(Only().tracker, kPluginTracker) << "scanners have a mark of their own";
    EXPECT_EQ(Only().kind, "") << "it may be a phone";
}

TEST_F(Verdicts, IgnoreAnApplicationThatTracesItsOwnCommandLine)
{
    Speaker("V.EXE", {Start("volume", "E:"), "<and more of its own>"});
    Speaker("VelProxy.exe", {"\"C:\\V\\VelProxy.exe\" -d \"V|E:\""});
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(verdicts.OpenCount(), 0U);
}

TEST_F(Verdicts, IgnoreAStartThatAProcessWithoutANameWrites)
{
    Speaker("?", {Start("volume", "E:")});
    EXPECT_THAT(told, IsEmpty()) << "the process exited at once, and a boot program does not";
}

TEST_F(Verdicts, OfAnApplicationThatIsItsOwnBootProgram)
{
    Speaker("v.exe", {kVolumes + "<Volumes will be detected.>", Start("mobile", "phone 1")});
    EXPECT_EQ(Only().device, "phone 1");
}

TEST_F(Verdicts, OfAStartWithoutADevice)
{
    Lines({"\"C:\\v.exe\" module=kestrafetch params mode=select"});
    EXPECT_EQ(Only().tracker, "");
    EXPECT_EQ(Only().kind, "");
    EXPECT_EQ(Only().device, "");
    EXPECT_EQ(Only().decision, Decision::Accepted);
    EXPECT_STREQ(Only().rule, kNoDevice);
    EXPECT_STREQ(Only().outcome, kStarted);
    EXPECT_EQ(Only().mode, "select");
}

TEST_F(Verdicts, OfARefusedStartThatNoTrackerAnnounced)
{
    Lines({"<KestraBoot><!!! Unable to launch Kestra.>"});
    EXPECT_EQ(Only().tracker, "");
    EXPECT_STREQ(Only().rule, kNoDevice);
    EXPECT_STREQ(Only().outcome, kOutsideConsoleSession);
}

TEST_F(Verdicts, AreRepeatedForALateStart)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>."});
    const std::int64_t came = now;
    now += OpenDevices::kLongestLaunch + 1;
    verdicts.Tick(now);
    EXPECT_STREQ(Only().outcome, kNoStartSeen);
    Lines({Start("camera", "one"), Start("camera", "one")});
    ASSERT_THAT(told, SizeIs(3));
    EXPECT_EQ(told[1].tracker, kWiaTracker);
    EXPECT_EQ(told[1].noticed.upMilliseconds, came);
    EXPECT_STREQ(told[1].rule, kImagingDevice);
    EXPECT_STREQ(told[1].outcome, kStarted);
    EXPECT_EQ(told[1].millisecondsToEnd, OpenDevices::kLongestLaunch + 11);
    EXPECT_EQ(told[2].tracker, kPluginTracker) << "a start belongs to one arrival";
}

TEST_F(Verdicts, AreRepeatedForACardThatTheHostStartsOnAThreadOfItsOwn)
{
    Lines({kFound, kFits, kPolling, Start("volume", "E:")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_STREQ(told[0].outcome, kNoStartSeen);
    EXPECT_EQ(told[1].tracker, kVolumeTracker);
    EXPECT_STREQ(told[1].outcome, kStarted);
}

TEST_F(Verdicts, AssignAStartToTheArrivalThatStillWaitsFirst)
{
    Lines({kFound, kFits, kPolling, kFound, kFits, Start("volume", "E:")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[1].noticed.upMilliseconds, now - 20);
}

TEST_F(Verdicts, ForgetDevicesThatWereNeverStarted)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>."});
    now += OpenDevices::kLongestSilence + 1;
    verdicts.Tick(now);
    Lines({kVolumes + "<DEVICE ARRIVED>", Start("camera", "one")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[1].tracker, kPluginTracker);
}

TEST_F(Verdicts, DoNotWaitForAHostThatStartsNothing)
{
    Lines({kFound, kFits, kPolling});
    EXPECT_EQ(Only().decision, Decision::Accepted);
    EXPECT_STREQ(Only().outcome, kNoStartSeen);
    told.clear();
    Lines({kFound, kFits, kVolumes + "<REMOVABLE DEVICE><V|F:>"});
    EXPECT_EQ(Only().device, "E:") << "the tracker has continued";
    EXPECT_EQ(verdicts.OpenCount(), 1U);
}

TEST_F(Verdicts, GiveUpWaitingAfterAWhile)
{
    Lines({kService + "<WiaTracker><WIA DEVICE><C|one>."});
    verdicts.Tick(now + OpenDevices::kLongestLaunch);
    EXPECT_THAT(told, IsEmpty());
    verdicts.Tick(now + OpenDevices::kLongestLaunch + 1);
    EXPECT_STREQ(Only().outcome, kNoStartSeen);

    told.clear();
    Lines({kFound});
    now += OpenDevices::kLongestSilence;
    Lines({kService + "<1><FILE><a.txt>\n"});
    verdicts.Tick(now + OpenDevices::kLongestSilence);
    EXPECT_THAT(told, IsEmpty()) << "a long scan is not a silence";
    verdicts.Tick(now + OpenDevices::kLongestSilence + 1);
    EXPECT_EQ(Only().decision, Decision::Open);
    EXPECT_STREQ(Only().rule, kUnfinished);
}

TEST_F(Verdicts, ReportUndecidedArrivalsAtTheEnd)
{
    Lines({kFound, kService + "<1><FILE><a.txt>\n"});
    verdicts.End();
    EXPECT_EQ(Only().decision, Decision::Open);
    EXPECT_EQ(Only().files, 1U);
    EXPECT_EQ(verdicts.OpenCount(), 0U);
}

TEST_F(Verdicts, KeepProcessesApart)
{
    Lines({kFound}, 1);
    Lines({kVolumes + "<REMOVABLE DEVICE><V|F:>", kFits}, 2);
    Lines({kRefused}, 1);
    Lines({Start("volume", "F:")}, 2);
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].device, "E:");
    EXPECT_EQ(told[0].decision, Decision::Refused);
    EXPECT_EQ(told[1].device, "F:");
    EXPECT_STREQ(told[1].outcome, kStarted);
}

TEST_F(Verdicts, KeepABoundedNumberOfProcesses)
{
    for (std::uint32_t process = 1; process <= 3 * ArrivalVerdicts::kMostProcesses; ++process) {
        Lines({kFound}, process);
    }
    EXPECT_EQ(verdicts.OpenCount(), ArrivalVerdicts::kMostProcesses);
    EXPECT_THAT(told, SizeIs(2 * ArrivalVerdicts::kMostProcesses)) << "reported in their present state";
}

TEST_F(Verdicts, KeepABoundedNumberOfWaitingDevices)
{
    for (int i = 0; i < 100; ++i) {
        Lines({kService + "<WiaTracker><WIA DEVICE><C|" + std::to_string(i) + ">."});
    }
    EXPECT_EQ(verdicts.OpenCount(), OpenDevices::kMostWaiting);
    EXPECT_EQ(told.front().device, "0");
}

TEST_F(Verdicts, KeepABoundedNumberOfThoseThatWereGivenUp)
{
    for (std::size_t i = 0; i <= OpenDevices::kMostWaiting; ++i) {
        Lines({kVolumes + "<REMOVABLE DEVICE><V|" + std::to_string(i) + ">", kFits, kPolling});
    }
    told.clear();
    Lines({Start("volume", "0"), Start("volume", "1")});
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].tracker, kPluginTracker);
    EXPECT_EQ(told[1].tracker, kVolumeTracker);
}

TEST_F(Verdicts, IgnoreEverythingElse)
{
    Lines({"", "hello", "<KestraProxy><Took control of the situation>", kVolumes + "<DEVICE REMOVED>",
           kService + "<0><FILE><a>", kService + "<99999999999999><FILE><a>", kService, kVolumes,
           kService + "<1><OTHER><a>"});
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(verdicts.OpenCount(), 0U);
}

TEST_F(Verdicts, OfAPluginNameThoseThatServe)
{
    const std::string served = "><Devices will be detected.>";
    Lines({kService + "<Phones" + served, kService + "<More phones" + served,
           kService + "<Phones" + served});
    verdicts.Tick(now + 10 * OpenDevices::kLongestSilence); // long before the device
    Lines({Start("mobile", "phone 1")});
    EXPECT_EQ(Only().tracker, kPluginTracker);
    EXPECT_THAT(Only().plugins, ElementsAre("Phones", "More phones"));
    told.clear();
    Lines({kFound, kFits, Start("volume", "E:")});
    EXPECT_THAT(Only().plugins, IsEmpty()) << "of another tracker";
}

} // namespace
} // namespace kestraboot::tools
