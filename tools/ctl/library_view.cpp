#include "tools/ctl/library_view.h"

#include "kestraboot/information_handler.h"
#include "tools/common/windows_error.h"
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
    if (path.empty()) {
        throw std::runtime_error("cannot get the path of this program: " +
                                 WindowsErrorText(::GetLastError()));
    }
    return path;
}

void PutText(const std::wstring& keyPath, const wchar_t* name, const std::wstring& text)
{
    const RegistryKey key(HKEY_LOCAL_MACHINE, keyPath, KEY_WRITE);
    const LONG status =
        ::RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error("cannot change the copy of the keys: " +
                                 WindowsErrorText(static_cast<unsigned long>(status)));
    }
}

/// Whether the library can answer a proxy anything other than its answer for missing values. Most
/// applications store nothing, and asking takes as long as everything else.
bool IsAnythingStored(const appInfo_tag& info)
{
    const std::wstring product = info.KeyPath.substr(0, info.KeyPath.find(L"\\Corvane Kestrafetch"));
    return RegistryKey(HKEY_LOCAL_MACHINE, product).Find(L"locale") ||
           RegistryKey(HKEY_CURRENT_USER, product).Find(L"kestralaunchstatus");
}

/// If the list were empty, the questions below would end the process.
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
    // From the same handler, because the next loading may find other flags.
    Require(handler.GetDefaultApplicationInfo(view.defaults));
    appInfo_tag organiser;
    if (handler.GetVel3Info(organiser)) {
        view.organiser = organiser;
    }
    return view;
}

void AskAsEachProxy(RegistryCopy& copy, std::vector<ListedApplication>& applications)
{
    const std::wstring program = RunningProgram();
    std::vector<bool> stored; // asked while the copy shows all of them
    for (ListedApplication& application : applications) {
        stored.push_back(IsAnythingStored(application.info));
        application.locale = L"en_us";
    }
    for (std::size_t i = 0; i < applications.size(); ++i) {
        ListedApplication& application = applications[i];
        // A proxy that several applications share gets the answer for the first of them.
        const ListedApplication* const owner = OwnerOfProxy(applications, application.info.ProxyPath);
        if (owner != &application) {
            application.mayLaunch = owner->mayLaunch;
            application.locale = owner->locale;
            application.localeStored = owner->localeStored;
            continue;
        }
        if (!stored[i]) {
            continue;
        }
        CKestraBootInformationHandler handler;
        copy.ShowOnly(application.info.KeyPath);
        PutText(application.info.KeyPath, L"ProxyPath", program);
        PutText(application.info.KeyPath, L"CmdLine", program); // remains there during the question
        if (!IsListed(handler)) {
            throw std::runtime_error("the copy of the keys lists no application");
        }
        application.mayLaunch = handler.GetKestraLaunchStatus();
        application.localeStored = handler.GetKestraLocaleString(application.locale);
    }
}

} // namespace kestraboot::tools
