#include "tools/ctl/library_view.h"

#include "kestraboot/information_handler.h"
#include "tools/ctl/auto_run.h"
#include "tools/ctl/registry_key.h"

#include <stdexcept>

namespace kestraboot::tools
{
namespace
{

void Require(bool answered)
{
    if (!answered) {
        throw std::runtime_error("out of memory");
    }
}

std::wstring RunningProgram()
{
    std::wstring path(1024, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

void PutText(const std::wstring& keyPath, const wchar_t* name, const std::wstring& text)
{
    const RegistryKey key(HKEY_LOCAL_MACHINE, keyPath, KEY_WRITE);
    const LONG status =
        ::RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error("cannot change the copy of the keys");
    }
}

/// Where the list were empty, the questions below would end the process.
bool IsListed(CKestraBootInformationHandler& handler)
{
    handler.LoadInformation();
    std::vector<appInfo_tag> all;
    Require(handler.GetAllApplicationInfo(all));
    return !all.empty();
}

} // namespace

LibraryView AskLibrary()
{
    LibraryView view;
    CKestraBootInformationHandler handler;
    handler.LoadInformation();
    Require(handler.GetAllApplicationInfo(view.all));
    // Asked of the same handler: the next loading may find other flags.
    Require(handler.GetDefaultApplicationInfo(view.defaults));
    appInfo_tag organiser;
    if (handler.GetVel3Info(organiser)) {
        view.organiser = organiser;
    }
    return view;
}

void AskAsEachProxy(std::vector<ListedApplication>& applications)
{
    const std::wstring program = RunningProgram();
    for (const ListedApplication& application : applications) {
        PutText(application.info.KeyPath, L"ProxyPath", L"");
    }
    for (ListedApplication& application : applications) {
        // A proxy that several applications share is told what the first of them says.
        const ListedApplication* const owner = OwnerOfProxy(applications, application.info.ProxyPath);
        if (owner != &application) {
            application.mayLaunch = owner->mayLaunch;
            application.locale = owner->locale;
            application.localeStored = owner->localeStored;
            continue;
        }
        CKestraBootInformationHandler handler;
        PutText(application.info.KeyPath, L"ProxyPath", program);
        PutText(application.info.KeyPath, L"CmdLine", program); // stays there while it is asked
        if (!IsListed(handler)) {
            throw std::runtime_error("the copy of the keys lists no application");
        }
        application.mayLaunch = handler.GetKestraLaunchStatus();
        application.localeStored = handler.GetKestraLocaleString(application.locale);
        PutText(application.info.KeyPath, L"ProxyPath", L"");
    }
}

} // namespace kestraboot::tools
