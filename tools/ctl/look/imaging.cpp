#include "tools/ctl/look/file_contents.h"
#include "tools/ctl/look/look.h"
#include "tools/ctl/look/module_search.h"

#include <windows.h>
#include <filesystem>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kImagingService = L"stisvc";

std::wstring WindowsFolder()
{
    wchar_t path[MAX_PATH] = {};
    const UINT length = ::GetWindowsDirectoryW(path, MAX_PATH);
    return std::wstring(path, length < MAX_PATH ? length : 0);
}

class ServiceHandle
{
public:
    explicit ServiceHandle(SC_HANDLE owned) noexcept : handle(owned) {}
    ServiceHandle(const ServiceHandle&) = delete;
    ServiceHandle& operator=(const ServiceHandle&) = delete;
    ~ServiceHandle()
    {
        if (handle != nullptr) {
            ::CloseServiceHandle(handle);
        }
    }
    [[nodiscard]] SC_HANDLE Get() const noexcept { return handle; }

private:
    SC_HANDLE handle;
};

void LookAtService(ImagingParts& imaging)
{
    const ServiceHandle manager(::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (manager.Get() == nullptr) {
        return;
    }
    const ServiceHandle service(
        ::OpenServiceW(manager.Get(), kImagingService, SERVICE_QUERY_CONFIG | SERVICE_QUERY_STATUS));
    if (service.Get() == nullptr) {
        imaging.serviceKnown = ::GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST;
        return;
    }
    alignas(QUERY_SERVICE_CONFIGW) BYTE configuration[8192] = {}; // the largest that Windows gives
    DWORD size = 0;
    SERVICE_STATUS status = {};
    auto* const read = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(configuration);
    if (::QueryServiceConfigW(service.Get(), read, sizeof configuration, &size) &&
        ::QueryServiceStatus(service.Get(), &status)) {
        imaging.serviceKnown = imaging.serviceExists = true;
        imaging.serviceDisabled = read->dwStartType == SERVICE_DISABLED;
        imaging.serviceRuns = status.dwCurrentState == SERVICE_RUNNING;
    }
}

SystemPart LookAtPart(const ModuleSearch& search, const wchar_t* name)
{
    SystemPart part;
    part.path = search.PathOf(name);
    if (part.path) {
        part.file = ReadPeFile(*part.path);
        part.version = VersionOf(*part.path);
    }
    return part;
}

bool Is64BitSource(const std::wstring& path)
{
    if (path.size() < 3 || ::_wcsicmp(path.c_str() + path.size() - 3, L".ds") != 0) {
        return false;
    }
    const PeReading source = ReadPeFile(path);
    return source.image && source.image->machine == kMachine64Bit;
}

/// Drivers are in folders of their own below twain_64, or in twain_64 itself.
std::size_t CountSources()
{
    std::error_code none; // a folder that cannot be listed has no source that could be loaded
    std::size_t count = 0;
    const std::filesystem::path folder = WindowsFolder() + L"\\twain_64";
    for (std::filesystem::recursive_directory_iterator entry(folder, none), end; !none && entry != end;
         entry.increment(none)) {
        count += Is64BitSource(entry->path().wstring()) ? 1U : 0U;
    }
    return count;
}

} // namespace

ImagingParts LookAtImaging(const std::wstring& bootProgram)
{
    const ModuleSearch search(bootProgram.substr(0, bootProgram.rfind(L'\\')));
    ImagingParts imaging;
    LookAtService(imaging);
    imaging.stillImage = LookAtPart(search, L"sti.dll");
    imaging.sourceManager = LookAtPart(search, L"twain_32.dll");
    imaging.sources = CountSources();
    return imaging;
}

} // namespace kestraboot::tools
