#pragma once

#include "tests/support/temp_folder.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tests
{

/// An application as its installer installs it: a folder of its own with kestraboot.exe, the library,
/// the runtime and the sample viewer, and its keys in the real registry of this prefix.
class Installation
{
public:
    /// `product` is the application's name and the key below SOFTWARE\Corvane. `bootProgram` is the file
    /// of this build to install, and its name there.
    explicit Installation(const std::wstring& product,
                          const std::wstring& bootProgram = L"kestraboot.exe",
                          const std::wstring& bootName = L"kestraboot.exe");

    void Register() const; ///< called by the constructor: writes an installer's keys
    void Unregister() const;

    [[nodiscard]] std::filesystem::path Proxy() const { return folder.Path() / proxyName; }
    [[nodiscard]] std::filesystem::path Application() const;
    [[nodiscard]] std::wstring KeyPath() const;

    /// The report of the started application; empty if it was not started.
    [[nodiscard]] std::string Report() const;

    /// Copies a file of this build, by its path below the folder of the programs, into its folder under
    /// another name, and replaces an existing one.
    void Put(const std::filesystem::path& built, const std::filesystem::path& as) const;

    /// Writes the OEM file beside the boot program.
    void AddOemFile(std::string_view contents) const { folder.AddFile(L"OEM/album.ini", contents); }

    const std::wstring name;
    TempFolder folder;

private:
    std::wstring proxyName;
};

/// The folder with the programs of this build.
[[nodiscard]] std::filesystem::path BuiltPrograms();

/// Empties the registry of applications, in both hives, and removes the auto-run entry and the legacy
/// organiser. Throws std::runtime_error on a real Windows, where these may be a user's.
void ClearCorvaneRegistry();

[[nodiscard]] std::wstring AutoRunEntry();

/// The legacy organiser, installed in a folder of its own.
class LegacyOrganiser
{
public:
    LegacyOrganiser();

    [[nodiscard]] std::filesystem::path DeviceConnect() const;

    /// The arguments with which its device-connect program was started so far ("-d", "-i"), in the order
    /// of the starts. The starts are detached, so one may come long after the program that started it
    /// has ended.
    [[nodiscard]] std::vector<std::string> Orders() const;

private:
    TempFolder folder;
};

} // namespace kestraboot::tests
