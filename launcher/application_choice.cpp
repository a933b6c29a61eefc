// Selects the application for an arrived device, and the mode of its start.
#include "foundation/process_identity.h"
#include "kestraboot/command_handler.h"
#include "registry/own_application.h"

using namespace kestraboot;

void CKestraBootCommandHandler::LaunchDefaultKestra(std::wstring& deviceType, std::wstring& deviceId)
{
    std::wstring direct = L"direct";
    std::wstring select = L"select";

    // Only the number of records of both queries counts.
    MaintainOrder();
    std::vector<appInfo_tag> defaults;
    static_cast<void>(GetDefaultApplicationInfo(defaults));
    if (defaults.size() == 1) {
        LaunchKestra(defaults.front().CmdLine, direct, deviceType, deviceId);
        return;
    }
    // Several defaults count as none.
    std::vector<appInfo_tag> all;
    static_cast<void>(GetAllApplicationInfo(all));
    if (all.empty()) {
        ::OutputDebugStringW(L"<KestraBoot><!!! No Kestra Compatible application found. This situation "
                             L"should be avoided.>");
        return;
    }
    appInfo_tag organiser; // an installed legacy organiser counts as a second application
    const bool onlyOne = all.size() == 1 && !GetVel3Info(organiser);
    LaunchKestra(all.front().CmdLine, onlyOne ? direct : select, deviceType, deviceId);
}

void CKestraBootCommandHandler::LaunchOwnKestra(std::wstring& mode, std::wstring& deviceType,
                                                std::wstring& deviceId)
{
    MaintainOrder();
    ProcessInfo self;
    GetCurrentProcessInfo(self);
    std::vector<appInfo_tag> all;
    static_cast<void>(GetAllApplicationInfo(all));
    const appInfo_tag* const own = FindByProxyPath(all, self.executablePath);
    if (own == nullptr) {
        ::OutputDebugStringW(L"<KestraBoot><!!! No Kestra application found for this Kestra proxy. This "
                             L"situation should be avoided.>");
        return;
    }
    std::wstring commandPath = own->CmdLine;
    LaunchKestra(commandPath, mode, deviceType, deviceId);
}
