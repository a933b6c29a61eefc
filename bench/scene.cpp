#include "bench/scene.h"

#include <filesystem>

namespace kestraboot::bench
{
namespace
{

std::wstring ThisProgram()
{
    wchar_t path[1024] = {};
    ::GetModuleFileNameW(nullptr, path, 1024);
    return path;
}

std::wstring Numbered(const wchar_t* word, int number)
{
    return word + std::to_wstring(10'000 + number);
}

void Register(const std::wstring& key, int number, const std::wstring& proxyPath,
              const std::wstring& commandPath)
{
    using namespace tests;
    PutText(HKEY_LOCAL_MACHINE, key, L"Name", Numbered(L"Picture Organiser ", number));
    PutText(HKEY_LOCAL_MACHINE, key, L"ProxyPath", proxyPath);
    PutText(HKEY_LOCAL_MACHINE, key, L"Desc", L"Download the pictures");
    PutText(HKEY_LOCAL_MACHINE, key, L"CmdLine", commandPath);
    PutText(HKEY_LOCAL_MACHINE, key, L"Icon", commandPath + L",1");
    PutText(HKEY_LOCAL_MACHINE, key + L"\\File Formats", L"Image", L"jpg jpeg jpe tif tiff bmp gif png");
    PutText(HKEY_LOCAL_MACHINE, key + L"\\File Formats", L"Audio", L"mp3 wav wma");
    PutText(HKEY_LOCAL_MACHINE, key + L"\\File Formats", L"Video", L"avi mov mpg mpeg wmv");
    MakeKey(HKEY_LOCAL_MACHINE, key + L"\\Preferences");
    PutDword(HKEY_CURRENT_USER, key + L"\\Preferences", L"DefaultFlag", number == 0 ? 1 : 0);
}

} // namespace

Scene::Scene(int applications, int otherKeys, const std::wstring& commandPath) : proxyPath(ThisProgram())
{
    const std::wstring root = L"SOFTWARE\\Corvane\\";
    tests::MakeKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane");
    tests::MakeKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run");
    for (int i = 0; i < applications; ++i) {
        Register(root + Numbered(L"Product", i) + L"\\Corvane Kestrafetch", i, proxyPath, commandPath);
    }
    constexpr int kInAGroup = 100; // the group's own key is one of them
    for (int i = 0; i < otherKeys; ++i) {
        const std::wstring group = root + Numbered(L"Group", i / kInAGroup);
        tests::MakeKey(HKEY_LOCAL_MACHINE,
                       i % kInAGroup == 0 ? group : group + L'\\' + Numbered(L"Key", i));
    }
    firstKey = root + Numbered(L"Product", 0) + L"\\Corvane Kestrafetch";
}

std::wstring BesideThisProgram(const wchar_t* name)
{
    return std::filesystem::path(ThisProgram()).replace_filename(name).wstring();
}

} // namespace kestraboot::bench
