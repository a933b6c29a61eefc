#include "choices.h"

#include "resource.h"
#include "text.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>

namespace
{

std::wstring NameOf(const appInfo_tag& application)
{
    return application.Name.empty() ? std::filesystem::path(application.CmdLine).stem().wstring()
                                    : application.Name;
}

bool SameApplication(const appInfo_tag& one, const appInfo_tag& other)
{
    return one.KeyPath == other.KeyPath && one.CmdLine == other.CmdLine;
}

} // namespace

std::vector<Choice> ListChoices(CKestraBootCommandHandler& library)
{
    library.LoadInformation();
    std::vector<appInfo_tag> all;
    if (!library.GetAllApplicationInfo(all)) {
        throw std::bad_alloc();
    }
    std::vector<Choice> choices;
    for (appInfo_tag& application : all) {
        appInfo_tag firstOfName;
        const bool isFirst = library.GetApplicationInfo(application.Name, firstOfName) &&
                             firstOfName.KeyPath == application.KeyPath;
        choices.push_back({application, false, isFirst, NameOf(application)});
    }
    appInfo_tag organiser;
    if (library.GetVel3Info(organiser)) {
        choices.push_back({organiser, true, false, NameOf(organiser)});
    }
    for (Choice& choice : choices) {
        const auto hasItsName = [&choice](const Choice& other) {
            return NameOf(other.application) == NameOf(choice.application);
        };
        if (std::ranges::count_if(choices, hasItsName) > 1) {
            choice.title = Text(IDS_SAME_NAME, {choice.title, choice.application.CmdLine});
        }
    }
    return choices;
}

bool IsStillThere(CKestraBootCommandHandler& library, const Choice& choice)
{
    // The library checks that the files of applications exist, but not the organiser's.
    const bool isFile =
        ::GetFileAttributesW(choice.application.CmdLine.c_str()) != INVALID_FILE_ATTRIBUTES;
    return isFile && std::ranges::any_of(ListChoices(library), [&choice](const Choice& now) {
               return now.isOrganiser == choice.isOrganiser &&
                      SameApplication(now.application, choice.application);
           });
}

bool MakeDefault(CKestraBootCommandHandler& library, const Choice& choice)
{
    std::wstring name = choice.application.Name;
    std::wstring yes = L"yes";
    std::vector<appInfo_tag> defaults;
    // The library does not report a flag that cannot be written: read back what is stored.
    return library.SetApplicationDefaultStatus(name, yes) &&
           library.GetDefaultApplicationInfo(defaults) && defaults.size() == 1 &&
           SameApplication(defaults.front(), choice.application);
}

void Start(CKestraBootCommandHandler& library, const Choice& choice, const LaunchRequest& request)
{
    std::wstring program = choice.application.CmdLine;
    std::wstring direct = L"direct";
    std::wstring deviceType = request.deviceType;
    std::wstring deviceId = request.deviceId;
    if (choice.isOrganiser) {
        library.LaunchVel3Proxy(program, deviceType, deviceId);
    } else {
        library.LaunchKestra(program, direct, deviceType, deviceId);
    }
}
