#include "legacy/organiser.h"

#include "foundation/file_formats.h"
#include "foundation/organiser_constants.h"
#include "foundation/registry_key.h"

#include <utility>

namespace kestraboot
{
namespace
{

constexpr const wchar_t* kInstallationKey =
    L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath";
constexpr const wchar_t* kAutoPlayKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers\\Handlers\\"
    L"CorvaneVellumryShowPicturesOnArrival";

std::wstring ReadAutoPlayAction()
{
    RegistryKey handler = RegistryKey::OpenLocalMachine(kAutoPlayKey, KEY_READ);
    const wchar_t* const action = handler.QueryString(L"Action");
    return action != nullptr ? action : L"";
}

} // namespace

bool ReadOrganiserInfo(appInfo_tag& record)
{
    RegistryKey installation = RegistryKey::OpenLocalMachine(kInstallationKey, KEY_READ);
    // A key without its default value names no folder, so the organiser counts as not installed.
    const wchar_t* const defaultValue = installation.QueryString(nullptr);
    if (defaultValue == nullptr) {
        return false;
    }
    const std::wstring folder = defaultValue;
    std::wstring icon = folder + L"\\VellumryOrganizer.exe, 111";
    std::wstring proxyPath = folder + L"\\VellumryDeviceConnect.exe";
    std::wstring commandPath = folder + L"\\VelProxy.exe";
    std::wstring action = ReadAutoPlayAction();

    record.ProxyPath = std::move(proxyPath);
    if (action.empty()) {
        record.Desc = kOrganiserDescription;
    } else {
        record.Desc = std::move(action);
    }
    record.Icon = std::move(icon);
    record.CmdLine = std::move(commandPath);
    record.Name = kOrganiserName;

    std::vector<formatInfo_tag> formats;
    AppendFormats(formats, kOrganiserImageExtensions, L"Image");
    AppendFormats(formats, kOrganiserAudioExtensions, L"Audio");
    AppendFormats(formats, kOrganiserVideoExtensions, L"Video");
    record.FileFormats = std::move(formats);
    return true;
}

} // namespace kestraboot
