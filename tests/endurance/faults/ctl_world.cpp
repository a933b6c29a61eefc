#include "tests/endurance/faults/ctl_world.h"

#include "tests/endurance/faults/ctl_answers.h"
#include "tests/endurance/faults/journal.h"
#include "tests/support/import_patch.h"
#include "tests/support/pe_builder.h"
#include "tests/support/sample_application.h"

#include <filesystem>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kOwnCopy = L"Software\\kestractl copy 4711";
constexpr const wchar_t* kLeftCopy = L"Software\\kestractl copy 99999";

struct Root {
    HKEY predefined;
    const wchar_t* leftover;
    bool replaced;
};
Root roots[] = {{HKEY_LOCAL_MACHINE, L"LEFT BEHIND HKEY_LOCAL_MACHINE replaced", false},
                {HKEY_CURRENT_USER, L"LEFT BEHIND HKEY_CURRENT_USER replaced", false}};
const RegistrySandbox* sandbox = nullptr;

/// The sandbox takes the place of the real root.
LSTATUS Replace(HKEY predefined, HKEY with) noexcept
{
    for (Root& root : roots) {
        if (root.predefined == predefined) {
            root.replaced = with != nullptr;
        }
    }
    return ::RegOverridePredefKey(predefined, with != nullptr ? with : sandbox->InPlaceOf(predefined));
}

} // namespace

struct CtlWorld::Patches {
    ImportPatch replace{"RegOverridePredefKey", Replace};
    CtlAnswers answers;
};

CtlWorld::CtlWorld() : folder(files.Path().wstring()), patches(std::make_unique<Patches>())
{
    sandbox = &registry;
    CtlAnswer() = {folder + L"\\windows", folder + L"\\nobody.exe",
                   files.AddFile(L"kestractl.exe").wstring(), false};
    MakeKey(HKEY_CURRENT_USER, kRoot);
}

CtlWorld::~CtlWorld()
{
    Restore();
    sandbox = nullptr;
}

void CtlWorld::InstallAnApplication()
{
    const SampleApplication application = RegisterSample(files.Path(), L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, application.OwnKey(), L"locale", L"de_de");
    PutDword(HKEY_CURRENT_USER, application.Preferences(), L"DefaultFlag", 1);
    PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L'"' + application.proxyPath + L'"');
}

void CtlWorld::PutFiles()
{
    wchar_t library[MAX_PATH] = {};
    ::GetModuleFileNameW(::GetModuleHandleW(L"kestraboot.dll"), library, MAX_PATH);
    const std::wstring bootFolder = files.AddFolder(L"Viewer").wstring();
    std::filesystem::copy_file(library, bootFolder + L"\\kestraboot.dll");
    CtlAnswer() = {folder + L"\\windows", bootFolder + L"\\proxy.exe", bootFolder + L"\\kestraboot.dll",
                   true};
    files.AddFile(L"Viewer\\OEM\\album.ini", "[KestraProxyStopInstall]\r\n0\r\n");
    files.AddFile(L"Viewer\\moxplugins\\nokiamanager.mox", PeFile{}.Bytes());
    PeFile part;
    part.needs.clear();
    files.AddFile(L"windows\\system32\\KERNEL32.dll", part.Bytes());
    files.AddFile(L"windows\\twain_64\\camera.ds", part.Bytes());
    part.exports = {"StiCreateInstance"};
    files.AddFile(L"windows\\system32\\sti.dll", part.Bytes());
    files.AddFile(L"windows\\system32\\twain_32.dll", part.Bytes());
}

void CtlWorld::Restore() const
{
    for (const Root& root : roots) {
        if (root.replaced) {
            static_cast<void>(Replace(root.predefined, nullptr));
        }
    }
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kOwnCopy);
    if (hasLeftCopy) {
        MakeKey(HKEY_CURRENT_USER, kLeftCopy);
    }
}

void CtlWorld::ShowLeftovers() const
{
    for (const Root& root : roots) {
        if (root.replaced) {
            Journal::Add(root.leftover);
            static_cast<void>(Replace(root.predefined, nullptr));
        }
    }
    if (KeyExists(HKEY_CURRENT_USER, kOwnCopy)) {
        Journal::Add(L"LEFT BEHIND a copy of the keys");
    }
    if (hasLeftCopy && KeyExists(HKEY_CURRENT_USER, kLeftCopy)) {
        Journal::Add(L"the copy of an earlier process stays");
    }
}

} // namespace kestraboot::tests
