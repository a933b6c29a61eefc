// The parts of Windows that cameras and scanners need.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr const char* kWia = "wia";
constexpr const char* kStillImage = "still-image";
constexpr const char* kTwain = "twain";
constexpr const wchar_t* kNotAsked = L"is not asked on this Windows";
constexpr std::uint32_t kSourceManagerOrdinal = 1;

Row WiaRow(const ImagingParts& imaging, bool watched)
{
    const wchar_t* const service = L"the service \"Windows Image Acquisition\" (stisvc)";
    if (!watched) {
        return Fine(kWia, {}, std::wstring(service) + L" " + kNotAsked);
    }
    if (!imaging.serviceKnown) {
        return Suspicious(kWia, {}, std::wstring(L"Windows does not report the state of ") + service,
                          L"run this program as administrator");
    }
    if (!imaging.serviceExists) {
        return Broken(kWia, {}, std::wstring(service) + L" is not installed: no WIA device is detected",
                      L"add it to Windows (on servers: the feature Desktop Experience)");
    }
    if (imaging.serviceDisabled) {
        return Broken(kWia, {}, std::wstring(service) + L" is disabled: no WIA device is detected",
                      L"let it start, then log on again: it is asked once");
    }
    return Fine(kWia, {},
                std::wstring(service) +
                    (imaging.serviceRuns ? L" runs" : L" does not run, and starts when it is asked"));
}

/// A part of Windows as a 64-bit program loads it.
struct LoadedPart {
    std::wstring path;
    const PeImage* image = nullptr; ///< null if it cannot be loaded
    std::wstring fault;             ///< why it cannot be loaded; empty if it can
};

LoadedPart Loaded(const SystemPart& part, const wchar_t* name)
{
    if (!part.path) {
        return {{}, nullptr, std::wstring(name) + L" cannot be found"};
    }
    if (!part.file.image) {
        return {*part.path, nullptr, *part.path + L" " + part.file.fault};
    }
    if (part.file.image->machine != kMachine64Bit) {
        return {*part.path, nullptr, *part.path + L" is " + MachineName(part.file.image->machine)};
    }
    return {*part.path, &*part.file.image, {}};
}

Row StillImageRow(const SystemPart& part, bool watched)
{
    if (!watched) {
        return Fine(kStillImage, {}, std::wstring(L"sti.dll ") + kNotAsked);
    }
    LoadedPart library = Loaded(part, L"sti.dll");
    if (library.image != nullptr && !HasExport(*library.image, "StiCreateInstance")) {
        library.fault = library.path + L" has no entry point StiCreateInstance";
    }
    if (!library.fault.empty()) {
        return Broken(
            kStillImage, {}, library.fault + L": no still-image device is detected",
            L"repair Windows; a file of that name beside the boot program does not belong there");
    }
    return Fine(kStillImage, library.path, L"can be loaded; " + VersionText(part.version));
}

Row TwainRow(const ImagingParts& imaging, bool watched)
{
    LoadedPart manager = Loaded(imaging.sourceManager, L"twain_32.dll");
    if (manager.image != nullptr && std::ranges::find(manager.image->ordinals, kSourceManagerOrdinal) ==
                                        manager.image->ordinals.end()) {
        manager.fault = manager.path + L" has no entry point 1";
    }
    const std::wstring sources =
        std::to_wstring(imaging.sources) + L" 64-bit TWAIN source" + (imaging.sources == 1 ? L"" : L"s");
    if (!watched) {
        return Fine(kTwain, {},
                    std::wstring(L"TWAIN ") + kNotAsked + L"; " +
                        (manager.fault.empty() ? L"there is a 64-bit source manager, with " + sources
                                               : L"there is no 64-bit source manager"));
    }
    if (!manager.fault.empty()) {
        return Suspicious(kTwain, {},
                          L"there is no 64-bit source manager: " + manager.fault +
                              L". A device with a TWAIN source alone is not detected",
                          L"install a 64-bit TWAIN source manager under the name twain_32.dll, and "
                          L"64-bit sources");
    }
    if (imaging.sources == 0) {
        return Suspicious(kTwain, manager.path,
                          L"is a 64-bit source manager, but there is no 64-bit source: a device with a "
                          L"TWAIN source alone is not detected",
                          L"install the 64-bit TWAIN driver of the device");
    }
    return Fine(kTwain, manager.path, L"is a 64-bit source manager, with " + sources);
}

} // namespace

Rows ImagingRows(const ImagingParts& imaging, const WatchedDevices& watched)
{
    return {WiaRow(imaging, watched.wia), StillImageRow(imaging.stillImage, watched.stillImages),
            TwainRow(imaging, watched.stillImages)};
}

} // namespace kestraboot::tools
