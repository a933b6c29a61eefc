#include "tests/support/compatible_application.h"

#include "tests/support/registry_sandbox.h"

namespace kestraboot::tests
{

void Register(const CompatibleApplication& application)
{
    PutText(HKEY_LOCAL_MACHINE, application.keyPath, L"Name", application.name);
    PutText(HKEY_LOCAL_MACHINE, application.keyPath, L"ProxyPath", application.proxyPath);
    PutText(HKEY_LOCAL_MACHINE, application.keyPath, L"CmdLine", application.commandPath);
    PutText(HKEY_LOCAL_MACHINE, application.keyPath + L"\\File Formats", L"Image", application.image);
}

std::wstring RunningExecutable()
{
    wchar_t path[1024] = {};
    ::GetModuleFileNameW(nullptr, path, 1024);
    return path;
}

} // namespace kestraboot::tests
