#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// The names that a compatible application registers under; a test's own copy of them.
inline constexpr const wchar_t* kRoot = L"SOFTWARE\\Corvane";
inline constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";
inline constexpr const wchar_t* kOrganiserKey =
    L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath";

/// A compatible application, as its installer would register it.
struct SampleApplication {
    std::wstring name;
    std::wstring keyPath; ///< of its "Corvane Kestrafetch" key
    std::wstring proxyPath;
    std::wstring commandPath;

    [[nodiscard]] std::wstring Preferences() const { return keyPath + L"\\Preferences"; }

    /// Its own key, above the one named "Corvane Kestrafetch".
    [[nodiscard]] std::wstring OwnKey() const;
};

/// Registers an application under HKEY_LOCAL_MACHINE (of a sandbox) and makes its two files in `folder`.
/// `product` is its key below the root, for example L"Viewer\\1.0", and also its name.
SampleApplication RegisterSample(const std::filesystem::path& folder, const std::wstring& product);

/// The same for an application whose proxy is the running executable.
SampleApplication RegisterOwnSample(const std::filesystem::path& folder, const std::wstring& product);

/// Writes the registry values of a legacy organiser that is installed in that folder.
void RegisterOrganiser(const std::wstring& folder);

/// The full path of the running executable.
[[nodiscard]] std::wstring OwnExecutablePath();

} // namespace kestraboot::tests
