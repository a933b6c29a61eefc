#include "tools/ctl/files.h"
#include "tools/ctl/look/file_contents.h"
#include "tools/ctl/look/folder.h"
#include "tools/ctl/look/look.h"
#include "tools/ctl/look/module_search.h"

#include <windows.h>
#include <utility>
#include <vector>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kImagingService = L"stisvc";

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
    const FileContents contents = ReadContents(path);
    if (!contents.bytes) {
        TellUnread("read", path);
        return false;
    }
    const PeReading source = ReadPe(*contents.bytes);
    return source.image && source.image->machine == kMachine64Bit;
}

/// Drivers are in folders of their own below twain_64, or in twain_64 itself.
std::size_t CountSources()
{
    std::size_t count = 0;
    std::vector<std::wstring> folders = {WindowsFolder() + L"\\twain_64"};
    while (!folders.empty()) {
        const std::wstring folder = std::move(folders.back());
        const std::wstring below = folder + L'\\';
        folders.pop_back();
        DWORD error = ERROR_SUCCESS;
        for (const auto& [name, isFolder] : EntriesOf(below + L'*', error)) {
            const std::wstring path = below + name;
            if (isFolder) {
                folders.push_back(path);
            } else {
                count += Is64BitSource(path) ? 1U : 0U;
            }
        }
        if (error != ERROR_SUCCESS) {
            ::SetLastError(error);
            TellUnread("list", folder);
        }
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
