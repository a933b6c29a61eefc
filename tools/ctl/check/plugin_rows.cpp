// The device plugins beside the boot program.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr const char* kPlugins = "plugins";
constexpr const char* kPlugin = "plugin";
constexpr const wchar_t* kPhoneManager = L"nokiamanager.mox";
constexpr const char* kEntryPoint = "FxPluginMain";

/// The reason why the host cannot load it; empty if it can.
std::wstring WhyNotLoaded(const PluginFile& plugin)
{
    if (!plugin.file.image) {
        return plugin.file.fault;
    }
    const PeImage& image = *plugin.file.image;
    if (image.machine != kMachine64Bit) {
        return L"is " + MachineName(image.machine) + L"; the boot program is 64-bit";
    }
    if (!image.isLibrary) {
        return L"is a program, not a library";
    }
    if (!HasExport(image, kEntryPoint)) {
        return L"has no entry point FxPluginMain";
    }
    std::vector<std::wstring> missing;
    missing.reserve(plugin.missing.size());
    for (const MissingModule& module : plugin.missing) {
        missing.push_back(Wide(module.name) +
                          (module.neededBy.empty() ? L"" : L" (for " + Wide(module.neededBy) + L")") +
                          L", which " + module.why);
    }
    return missing.empty() ? L"" : L"needs " + AndList(missing);
}

std::wstring AdviceFor(const PluginFile& plugin)
{
    if (plugin.missing.empty()) {
        return L"get the 64-bit plugin from its maker again, or take the file away";
    }
    return L"copy the missing files beside the boot program: Windows searches there, not in moxplugins";
}

/// An earlier file of the folder that is the same plugin, as far as that shows without running
/// either.
const PluginFile* OlderBrother(const PluginFolder& folder, const PluginFile& plugin)
{
    if (plugin.originalName.empty()) {
        return nullptr;
    }
    for (const PluginFile& other : folder.files) {
        if (&other == &plugin) {
            return nullptr;
        }
        if (SameIgnoringCase(other.originalName, plugin.originalName)) {
            return &other;
        }
    }
    return nullptr;
}

Row PluginRow(const PluginFolder& folder, const PluginFile& plugin)
{
    const std::wstring why = WhyNotLoaded(plugin);
    if (!why.empty()) {
        return Broken(kPlugin, plugin.name, why, AdviceFor(plugin));
    }
    if (!plugin.sameBytesAs.empty()) {
        return Suspicious(kPlugin, plugin.name,
                          L"is byte for byte " + plugin.sameBytesAs +
                              L", and so has the same identifier: the host takes the first of them, and "
                              L"refuses this one",
                          L"take one of them away");
    }
    if (const PluginFile* const other = OlderBrother(folder, plugin)) {
        return Suspicious(kPlugin, plugin.name,
                          L"and " + other->name + L" say in their version resources that they are " +
                              InQuotes(plugin.originalName) +
                              L": if they have one identifier, the host refuses this one",
                          L"leave the newer one");
    }
    return Fine(kPlugin, plugin.name,
                L"is a 64-bit plugin, and what it needs is there; " + VersionText(plugin.version) +
                    L". No other one has its bytes or its original name; whether one has its "
                    L"identifier shows only when they run");
}

} // namespace

Rows PluginRows(const PluginFolder& folder)
{
    if (folder.files.empty() && folder.listed) {
        return {Fine(kPlugins, {},
                     folder.exists ? L"there is no plugin in moxplugins"
                                   : L"there is no folder moxplugins, and so no plugin")};
    }
    Rows rows;
    const bool hasPhoneManager = std::ranges::any_of(folder.files, [](const PluginFile& plugin) {
        return SameIgnoringCase(plugin.name, kPhoneManager);
    });
    if (hasPhoneManager) {
        rows.push_back(Fine(kPlugins, {}, L"nokiamanager.mox exists: the host searches for the others"));
    } else if (folder.listed) {
        rows.push_back(Broken(kPlugins, {},
                              L"there is no nokiamanager.mox: the host loads no other plugin before it",
                              L"install the phone manager's plugin"));
    }
    if (!folder.listed) {
        rows.push_back(Suspicious(
            kPlugins, {}, L"Windows does not list all files of moxplugins: some may be missing here",
            L"run this program again, or as administrator"));
    }
    for (const PluginFile& plugin : folder.files) {
        rows.push_back(PluginRow(folder, plugin));
    }
    return rows;
}

} // namespace kestraboot::tools
