#include "tests/endurance/fuzz/application_model.h"

#include <cstring>
#include <deque>

namespace kestraboot::fuzz
{
namespace
{

void AppendWords(std::vector<formatInfo_tag>& formats, const std::wstring& text, const wchar_t* type)
{
    std::wstring word;
    for (const wchar_t character : text + L' ') {
        if (character != L' ') {
            word += character;
        } else if (!word.empty()) {
            formats.push_back({word, type});
            word.clear();
        }
    }
}

} // namespace

std::optional<std::wstring> TextOf(const HiveKey* key, const wchar_t* name)
{
    const HiveValue* const value = key == nullptr ? nullptr : key->Value(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    std::wstring text;
    for (std::size_t i = 0; i < value->bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(value->bytes[i]);
        const auto high =
            i + 1 < value->bytes.size() ? static_cast<unsigned char>(value->bytes[i + 1]) : 0;
        if (low == 0 && high == 0) {
            break;
        }
        text += static_cast<wchar_t>(low + 256 * high);
    }
    return text;
}

std::optional<std::uint32_t> NumberOf(const HiveKey* key, const wchar_t* name)
{
    const HiveValue* const value = key == nullptr ? nullptr : key->Value(name);
    std::uint32_t number = 0;
    if (value == nullptr || value->bytes.size() != sizeof number) {
        return std::nullopt;
    }
    std::memcpy(&number, value->bytes.data(), sizeof number);
    return number == 0xFFFFFFFF ? std::nullopt : std::optional(number);
}

appInfo_tag ApplicationModel::Record(const std::wstring& path)
{
    appInfo_tag record;
    record.KeyPath = path;
    const HiveKey* const key = world.machine.Find(path);
    record.Name = TextOf(key, L"Name").value_or(L"");
    record.ProxyPath = TextOf(key, L"ProxyPath").value_or(L"");
    record.Desc = TextOf(key, L"Desc").value_or(L"");
    record.CmdLine = TextOf(key, L"CmdLine").value_or(L"");
    record.Icon = TextOf(key, L"Icon").value_or(L"");
    const HiveKey* const formats = world.machine.Find(path + L"\\File Formats");
    AppendWords(record.FileFormats, TextOf(formats, L"Image").value_or(L""), L"Image");
    AppendWords(record.FileFormats, TextOf(formats, L"Audio").value_or(L""), L"Audio");
    AppendWords(record.FileFormats, TextOf(formats, L"Video").value_or(L""), L"Video");
    record.DefaultFlag = DefaultFlag(path + L"\\Preferences");
    return record;
}

std::uint32_t ApplicationModel::DefaultFlag(const std::wstring& preferences)
{
    if (const HiveKey* const user = world.user.Find(preferences)) {
        return NumberOf(user, L"DefaultFlag").value_or(0);
    }
    MakeUserPreferences(preferences);
    return NumberOf(world.machine.Find(preferences), L"DefaultFlag").value_or(0);
}

void ApplicationModel::MakeUserPreferences(const std::wstring& preferences)
{
    std::size_t first = 0; // drops letters that occur anywhere in the root's own path
    while (first < preferences.size() &&
           std::wstring(L"SOFTWAREorvane\\C").find(preferences[first]) != std::wstring::npos) {
        ++first;
    }
    if (first == preferences.size() || world.user.Find(L"SOFTWARE\\Corvane") == nullptr) {
        return;
    }
    world.user.Make(L"SOFTWARE\\Corvane\\" + preferences.substr(first));
    if (HiveKey* const made = world.user.Find(preferences)) {
        made->PutDword(L"DefaultFlag", 0);
    }
}

bool ApplicationModel::KeptOut(const std::wstring& path)
{
    constexpr const wchar_t* kValue = L"AutoLaunchOnDeviceConnect";
    const auto forUser = NumberOf(world.user.Find(path + L"\\Preferences"), kValue);
    const auto forMachine = NumberOf(world.machine.Find(path + L"\\Preferences"), kValue);
    return forUser ? *forUser == 1 : forMachine == 1U;
}

void ApplicationModel::Load()
{
    applications.clear();
    std::vector<appInfo_tag> found;
    std::deque<std::wstring> paths;
    if (world.machine.Find(L"SOFTWARE\\Corvane") != nullptr) {
        paths.emplace_back(L"SOFTWARE\\Corvane");
    }
    for (; !paths.empty(); paths.pop_front()) {
        for (const HiveKey& subkey : world.machine.Find(paths.front())->subkeys) {
            if (subkey.name.size() > 127) {
                break; // ends the enumeration of this key
            }
            const std::wstring path = paths.front() + L'\\' + subkey.name;
            if (subkey.name == L"Corvane Kestrafetch") {
                found.push_back(Record(path));
            } else {
                paths.push_back(path);
            }
        }
    }
    for (const appInfo_tag& application : found) {
        if (world.files.contains(application.CmdLine) && world.files.contains(application.ProxyPath) &&
            !KeptOut(application.KeyPath)) {
            applications.push_back(application);
        }
    }
}

const appInfo_tag* ApplicationModel::Named(const std::wstring& name) const
{
    for (const appInfo_tag& application : applications) {
        if (application.Name == name) {
            return &application;
        }
    }
    return nullptr;
}

std::vector<appInfo_tag> ApplicationModel::Defaults() const
{
    std::vector<appInfo_tag> defaults;
    for (const appInfo_tag& application : applications) {
        if (application.DefaultFlag != 0) {
            defaults.push_back(application);
        }
    }
    return defaults;
}

std::vector<formatInfo_tag> ApplicationModel::SupportedFormats()
{
    std::vector<appInfo_tag> asked = Defaults();
    if (asked.empty()) {
        asked = applications;
        asked.push_back(Organiser().value_or(appInfo_tag()));
    }
    std::vector<formatInfo_tag> formats;
    for (const appInfo_tag& application : asked) {
        for (const formatInfo_tag& format : application.FileFormats) {
            if (format.MediaType != L"Audio") {
                formats.push_back(format);
            }
        }
    }
    return formats;
}

std::optional<appInfo_tag> ApplicationModel::Organiser()
{
    const HiveKey* const key =
        world.machine.Find(L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath");
    const auto folder = TextOf(key, L"");
    if (!folder || key->Value(L"")->bytes.empty()) { // a value without any byte names no folder
        return std::nullopt;
    }
    const std::wstring action =
        TextOf(world.machine.Find(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"
                                  L"AutoplayHandlers\\Handlers\\CorvaneVellumryShowPicturesOnArrival"),
               L"Action")
            .value_or(L"");
    appInfo_tag record;
    record.Name = L"Corvane Vellumry 3.0";
    record.ProxyPath = *folder + L"\\VellumryDeviceConnect.exe";
    record.CmdLine = *folder + L"\\VelProxy.exe";
    record.Icon = *folder + L"\\VellumryOrganizer.exe, 111";
    record.Desc = action.empty() ? L"Organize and edit pictures using" : action;
    AppendWords(
        record.FileFormats,
        L"jpg jpe jpeg png tif tiff psd wbmp wbm tga vda icb vst pxr pcx jpf jpx jp2 j2c j2k jpc "
        L"gif crw nef raf orf mrw dcr mos raw pef srf dnf x3f cr2",
        L"Image");
    AppendWords(record.FileFormats, L"wma mp3 wav", L"Audio");
    AppendWords(record.FileFormats, L"3gp 3g2 avi mov mpg mpe mpeg mp4 wmv", L"Video");
    return record;
}

} // namespace kestraboot::fuzz
