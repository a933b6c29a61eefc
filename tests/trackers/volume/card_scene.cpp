#include "tests/trackers/volume/card_scene.h"

#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

#include <cwchar>

namespace kestraboot::tests
{
namespace
{

CardScene* scene = nullptr;
const HANDLE kListing = reinterpret_cast<HANDLE>(0x715);

} // namespace

CardScene::CardScene()
    : sleep([this](DWORD milliseconds) {
          const std::lock_guard lock(mutex);
          sleeps.push_back(milliseconds);
      }),
      listing([this](const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
          const std::lock_guard lock(mutex);
          *entry = {};
          std::wcscpy(entry->cFileName,
                      withPictures.contains(pattern[0]) ? L"IMG_0001.JPG" : L"readme.txt");
          return kListing;
      }),
      endOfListing([](HANDLE, WIN32_FIND_DATAW*) {
          return FALSE;
      }),
      closing([](HANDLE) {
          return TRUE;
      })
{
    scene = this;
    static const bool initialized = (InitializeDispatch(), true);
    static_cast<void>(initialized);
    machine.Put(L'C', {});
    CompatibleApplication application;
    application.keyPath = L"SOFTWARE\\Corvane\\App\\Corvane Kestrafetch";
    application.proxyPath = RunningExecutable();
    application.commandPath = files.AddFile(L"app.exe").wstring();
    Register(application);
    RegisterDeviceConnectCallback(Keep);
}

CardScene::~CardScene()
{
    RegisterDeviceConnectCallback(nullptr);
    scene = nullptr;
}

void CardScene::Keep(std::wstring& kind, std::wstring& deviceId)
{
    {
        const std::lock_guard lock(scene->mutex);
        scene->events.emplace_back(kind, deviceId);
    }
    if (scene->whileReporting) {
        scene->whileReporting();
    }
}

void CardScene::InsertCard(wchar_t letter, bool withPicture)
{
    {
        const std::lock_guard lock(mutex);
        if (withPicture) {
            withPictures.insert(letter);
        } else {
            withPictures.erase(letter);
        }
    }
    machine.Put(letter, {DRIVE_REMOVABLE, true});
}

void CardScene::TakeCardOut(wchar_t letter)
{
    machine.Put(letter, {DRIVE_REMOVABLE, false});
}

void CardScene::UnplugReader(wchar_t letter)
{
    machine.Remove(letter);
}

std::vector<CardScene::Event> CardScene::Events() const
{
    const std::lock_guard lock(mutex);
    return events;
}

std::vector<DWORD> CardScene::Sleeps() const
{
    const std::lock_guard lock(mutex);
    return sleeps;
}

std::vector<std::wstring> LinesOfACard(wchar_t letter, bool withPicture)
{
    const std::wstring tag = L"<***DeviceConnect***>";
    std::vector<std::wstring> lines{tag + L"<VolumeTracker><REMOVABLE DEVICE><V|" + letter + L":>"};
    if (withPicture) {
        lines.push_back(tag + L"<1><FILE><IMG_0001.JPG>\n");
        lines.push_back(tag + L"<Supported file format is found on device.>");
        return lines;
    }
    for (int attempt = 0; attempt < 3; ++attempt) {
        lines.push_back(tag + L"<1><FILE><readme.txt>\n");
        lines.push_back(tag + L"<Supported media content check fails...Trying again.>");
    }
    lines.push_back(tag + L"<Volume does not contain supported media content.>");
    lines.push_back(tag + L"<VolumeTracker><Launch not possible>.");
    return lines;
}

} // namespace kestraboot::tests
