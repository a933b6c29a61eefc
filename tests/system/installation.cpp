#include "tests/system/installation.h"

#include "tests/support/compatible_application.h"
#include "tests/support/registry_sandbox.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kDeviceConnect = L"VellumryDeviceConnect";

std::filesystem::path ReportFile(const std::wstring& program)
{
    return std::filesystem::path(::_wgetenv(L"LOCALAPPDATA")) / L"Corvane Sample Viewer" /
           (program + L".txt");
}

/// The report of viewer.exe under another name (without ".exe").
std::string ReportOf(const std::wstring& program)
{
    std::ifstream in(ReportFile(program), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void CopyProgram(const std::filesystem::path& built, const std::filesystem::path& to)
{
    std::filesystem::copy_file(BuiltPrograms() / built, to,
                               std::filesystem::copy_options::overwrite_existing);
}

} // namespace

std::filesystem::path BuiltPrograms()
{
    return std::filesystem::path(RunningExecutable()).parent_path();
}

Installation::Installation(const std::wstring& product, const std::wstring& bootProgram,
                           const std::wstring& bootName)
    : name(product), proxyName(bootName)
{
    CopyProgram(bootProgram, Proxy());
    CopyProgram(L"viewer.exe", Application());
    for (const wchar_t* const dll :
         {L"kestraboot.dll", L"libstdc++-6.dll", L"libgcc_s_seh-1.dll", L"libwinpthread-1.dll"}) {
        CopyProgram(dll, folder.Path() / dll);
    }
    std::filesystem::remove(ReportFile(Application().stem().wstring()));
    Register();
}

void Installation::Register() const
{
    tests::Register({KeyPath(), name, Proxy().wstring(), Application().wstring(), L"jpg"});
    MakeKey(HKEY_LOCAL_MACHINE, KeyPath() + L"\\Preferences");
}

void Installation::Put(const std::filesystem::path& built, const std::filesystem::path& as) const
{
    const std::filesystem::path target = folder.Path() / as;
    std::filesystem::create_directories(target.parent_path());
    CopyProgram(built, target);
}

std::filesystem::path Installation::Application() const
{
    // A name of its own, and therefore a report of its own.
    return folder.Path() / (folder.Path().filename().wstring() + L".exe");
}

std::wstring Installation::KeyPath() const
{
    return L"SOFTWARE\\Corvane\\" + name + L"\\Corvane Kestrafetch";
}

void Installation::Unregister() const
{
    RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\" + name);
}

std::string Installation::Report() const
{
    return ReportOf(Application().stem().wstring());
}

void ClearCorvaneRegistry()
{
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    if (::GetProcAddress(ntdll, "wine_get_version") == nullptr) {
        throw std::runtime_error(
            "this is no Wine prefix: the applications of a real Windows are not removed");
    }
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane");
    ::RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
    ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kRunKey, L"Corvane Kestrafetch");
    // Installers of compatible applications create the user's root; nothing else does.
    MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
}

std::wstring AutoRunEntry()
{
    return StoredText(HKEY_LOCAL_MACHINE, kRunKey, L"Corvane Kestrafetch").value_or(L"(none)");
}

LegacyOrganiser::LegacyOrganiser()
{
    CopyProgram(L"viewer.exe", DeviceConnect());
    for (const wchar_t* const dll :
         {L"kestraboot.dll", L"libstdc++-6.dll", L"libgcc_s_seh-1.dll", L"libwinpthread-1.dll"}) {
        CopyProgram(dll, folder.Path() / dll);
    }
    PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath", nullptr,
            folder.Path().wstring());
}

std::filesystem::path LegacyOrganiser::DeviceConnect() const
{
    return folder.Path() / (std::wstring(kDeviceConnect) + L".exe");
}

std::vector<std::string> LegacyOrganiser::Orders() const
{
    // The organisers of all tests write to one report.
    const std::string ownLine = "command line: \"" + DeviceConnect().string() + "\" ";
    std::vector<std::string> orders;
    std::istringstream report(ReportOf(kDeviceConnect));
    for (std::string line; std::getline(report, line);) {
        if (line.starts_with(ownLine)) {
            orders.push_back(line.substr(ownLine.size()));
        }
    }
    return orders;
}

} // namespace kestraboot::tests
