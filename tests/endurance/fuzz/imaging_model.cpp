#include "tests/endurance/fuzz/imaging_model.h"

#include "tests/endurance/fuzz/application_model.h"

#include <gmock/gmock.h>

namespace kestraboot::fuzz
{
namespace
{

std::wstring Line(const std::wstring& text)
{
    return text.substr(0, 259);
}

/// The name and, if it fills its field, the four bytes behind it, up to the first zero.
std::wstring NameOf(const StillDevice& device)
{
    std::wstring name = device.name;
    if (name.size() == 128) {
        name += static_cast<wchar_t>(device.capabilities & 0xFFFF);
        name += static_cast<wchar_t>(device.capabilities >> 16);
    }
    return name.c_str();
}

} // namespace

void PrintTo(const Reported& reported, std::ostream* out)
{
    *out << "events " << testing::PrintToString(reported.events) << ", trace "
         << testing::PrintToString(reported.trace);
}

int ModelOfWiaType(const WiaWorld& wia, const std::wstring& id)
{
    if (!wia.available || wia.enumerate != S_OK) {
        return 0;
    }
    for (const tests::FakeWiaDevice& device : wia.devices) {
        const bool readable = !device.isNull && device.read == S_OK;
        if (!readable || device.id.vt != VT_BSTR || device.id.bstrVal == nullptr ||
            device.id.bstrVal != id) {
            continue;
        }
        const bool number = device.type.vt == VT_I4 || device.type.vt == VT_UI4;
        const std::uint32_t type = number ? static_cast<std::uint32_t>(device.type.lVal) >> 16 : 0;
        return type == 1 || type == 2 ? static_cast<int>(type) : 0;
    }
    return 0;
}

Reported ModelOfWiaConnect(const WiaWorld& wia, const std::optional<std::wstring>& id)
{
    const int type = id ? ModelOfWiaType(wia, *id) : 0;
    if (type == 0) {
        return {{}, {L"Could not get the device type."}};
    }
    return {{{type == 2 ? L"camera" : L"scanner", *id}},
            {Line(std::wstring(L"<***DeviceConnect***><WiaTracker><WIA DEVICE><") +
                  (type == 2 ? L"C|" : L"S|") + *id + L">.")}};
}

bool StillModel::Open(const StillListing& listing)
{
    usable = world.loads && world.entry && SUCCEEDED(world.create) && !world.createsNothing &&
             SUCCEEDED(world.initialize);
    const auto listed = usable ? List(listing) : std::nullopt;
    known = listed.value_or(std::vector<Known>());
    return listed.has_value();
}

void StillModel::Change(const StillListing& listing)
{
    const std::vector<Known> current =
        usable ? List(listing).value_or(std::vector<Known>()) : std::vector<Known>();
    for (const Known& device : current) {
        bool isKnown = false;
        for (const Known& before : known) {
            isKnown = isKnown || SameText(before.name, device.name);
        }
        if (!isKnown) {
            Report(device);
            break; // one for each change
        }
    }
    known = current;
}

std::optional<std::vector<StillModel::Known>> StillModel::List(const StillListing& listing)
{
    const bool claimsMore = listing.tooMany > 0;
    const bool missing = listing.noBuffer && !listing.devices.empty();
    if (listing.result != S_OK || claimsMore || missing) {
        return std::nullopt;
    }
    std::vector<Known> listed;
    for (const StillDevice& device : listing.devices) {
        const std::wstring name = NameOf(device);
        listed.push_back({name, Tag(device, name)});
    }
    return listed;
}

std::wstring StillModel::Tag(const StillDevice& device, const std::wstring& name)
{
    const HiveKey* const key =
        world.machine.Find(L"SYSTEM\\CurrentControlSet\\Control\\Class\\" + name + L"\\DeviceData");
    const auto stored = TextOf(key, L"TwainDS");
    if (!stored || key->Value(L"TwainDS")->bytes.empty()) {
        return {};
    }
    const std::wstring source = stored->substr(0, 259);
    if (!Listed(source)) {
        return {};
    }
    const std::uint32_t type = device.type >> 16;
    const wchar_t* const prefix = type == 2 ? L"C|" : type == 1 ? L"S|" : L"";
    return (prefix + (L'"' + source + L'"')).substr(0, 259);
}

bool StillModel::Listed(const std::wstring& source) const
{
    const TwainWorld& twain = world.twain;
    if (!twain.installed || !twain.hasEntry || twain.open == 1) {
        return false;
    }
    for (const std::string& product : twain.sources) {
        const std::string name = product.c_str();
        wchar_t wide[64] = {};
        ::MultiByteToWideChar(CP_ACP, 0, name.data(), static_cast<int>(name.size()), wide, 63);
        const std::wstring listed = wide;
        if (!SameText(listed.substr(0, 4), L"WIA-") && SameText(listed, source)) {
            return true;
        }
    }
    return false;
}

void StillModel::Report(const Known& device)
{
    const std::wstring tracker = L"<***DeviceConnect***><StiTracker><";
    if (!device.tag.empty()) {
        reported.trace.push_back(Line(tracker + L"TWAIN DEVICE><" + device.tag + L">"));
        const wchar_t* const kind = device.tag.starts_with(L"C|")   ? L"camera"
                                    : device.tag.starts_with(L"S|") ? L"scanner"
                                                                    : L"";
        reported.events.emplace_back(kind, device.tag.substr(2));
    }
    if (!world.onXp || !world.wia.available) {
        return;
    }
    const int type = ModelOfWiaType(world.wia, device.name);
    if (type == 0) {
        reported.trace.push_back(tracker + L"Could not get the device type.>");
        return;
    }
    reported.trace.push_back(
        Line(tracker + L"WIA DEVICE><" + (type == 2 ? L"C|" : L"S|") + device.name + L">"));
    reported.events.emplace_back(type == 2 ? L"camera" : L"scanner", device.name);
}

} // namespace kestraboot::fuzz
