// The files beside a boot program.
#include "tools/ctl/files.h"
#include "tools/ctl/look/file_contents.h"
#include "tools/ctl/look/folder.h"
#include "tools/ctl/look/look.h"
#include "tools/ctl/look/module_search.h"

#include <windows.h>
#include <cwchar>
#include <map>

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kSectionCapacity = 260; // as the library reads it

OemFile LookAtOemFile(const std::wstring& folder)
{
    OemFile oem;
    const std::wstring file = folder + L"\\OEM\\album.ini";
    oem.exists = FileExists(file);
    if (!oem.exists) {
        return oem;
    }
    wchar_t section[kSectionCapacity + 1] = {};
    ::SetLastError(ERROR_SUCCESS);
    if (::GetPrivateProfileSectionW(L"KestraProxyStopInstall", section, kSectionCapacity, file.c_str()) >
        0) {
        oem.firstLine = section; // up to the first zero
        oem.number = ::_wtoi(section);
    } else if (::GetLastError() == ERROR_ACCESS_DENIED) { // for the library it is empty
        TellUnread("read", file);
    }
    return oem;
}

/// FNV-1a. Compares files of the same size alone.
std::uint64_t HashOf(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const std::uint8_t byte : bytes) {
        hash = (hash ^ byte) * 0x100000001B3;
    }
    return hash;
}

PluginFolder LookAtPlugins(const std::wstring& bootFolder)
{
    PluginFolder plugins;
    const std::wstring folder = bootFolder + L"\\moxplugins";
    plugins.exists = FolderExists(folder);
    ModuleSearch search(bootFolder);
    std::map<std::pair<std::size_t, std::uint64_t>, std::wstring> seen; // size and hash
    DWORD error = ERROR_SUCCESS;
    for (const auto& [name, isFolder] : EntriesOf(folder + L"\\*.mox", error)) {
        if (isFolder) {
            continue;
        }
        PluginFile& plugin = plugins.files.emplace_back();
        std::wstring path = folder + L"\\";
        path += name;
        plugin.name = name;
        const FileContents contents = ReadContents(path);
        if (!contents.bytes) {
            plugin.file.fault = contents.fault;
            continue;
        }
        plugin.file = ReadPe(*contents.bytes);
        const auto [earlier, first] =
            seen.insert({{contents.bytes->size(), HashOf(*contents.bytes)}, name});
        if (!first) {
            plugin.sameBytesAs = earlier->second;
        }
        if (plugin.file.image && plugin.file.image->machine == kMachine64Bit) {
            plugin.missing = MissingModules(*plugin.file.image, [&](const std::string& needed) {
                return search.Find(needed);
            });
            plugin.version = VersionOf(path);
            plugin.originalName = OriginalNameOf(path);
        }
    }
    plugins.listed = error == ERROR_SUCCESS;
    return plugins;
}

} // namespace

BootFolder LookBeside(const std::wstring& program)
{
    const std::wstring folder = program.substr(0, program.rfind(L'\\'));
    const std::wstring library = folder + L"\\kestraboot.dll";
    BootFolder boot;
    boot.program = program;
    boot.programVersion = VersionOf(program);
    boot.libraryExists = FileExists(library);
    boot.libraryVersion = VersionOf(library);
    boot.oem = LookAtOemFile(folder);
    boot.plugins = LookAtPlugins(folder);
    return boot;
}

} // namespace kestraboot::tools
