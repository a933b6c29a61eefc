#include "tests/support/sample_application.h"

#include "tests/support/registry_sandbox.h"

#include <fstream>

namespace kestraboot::tests
{
namespace
{

std::wstring MakeFile(const std::filesystem::path& path)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream made(path);
    return path.wstring();
}

SampleApplication Register(const std::filesystem::path& folder, const std::wstring& product,
                           const std::wstring& proxyPath)
{
    const SampleApplication sample = {product,
                                      std::wstring(kRoot) + L'\\' + product + L"\\Corvane Kestrafetch",
                                      proxyPath, MakeFile(folder / product / L"viewer.exe")};
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"Name", sample.name);
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"ProxyPath", sample.proxyPath);
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"CmdLine", sample.commandPath);
    return sample;
}

} // namespace

std::wstring SampleApplication::OwnKey() const
{
    return keyPath.substr(0, keyPath.find(L"\\Corvane Kestrafetch"));
}

SampleApplication RegisterSample(const std::filesystem::path& folder, const std::wstring& product)
{
    return Register(folder, product, MakeFile(folder / product / L"proxy.exe"));
}

SampleApplication RegisterOwnSample(const std::filesystem::path& folder, const std::wstring& product)
{
    return Register(folder, product, OwnExecutablePath());
}

void RegisterOrganiser(const std::wstring& folder)
{
    PutText(HKEY_LOCAL_MACHINE, kOrganiserKey, nullptr, folder);
}

std::wstring OwnExecutablePath()
{
    wchar_t path[32768] = {};
    ::GetModuleFileNameW(nullptr, path, 32768);
    return path;
}

} // namespace kestraboot::tests
