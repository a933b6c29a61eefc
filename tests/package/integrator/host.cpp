// A small boot program of a maker. It takes control, starts the default application for each arrival,
// and reports each arrival on standard output. It exits when both a card and a camera have arrived.
#include <kestraboot/kestraboot.h>

#include <windows.h>

#include <cstdio>

namespace
{

HANDLE bothCame = nullptr;

/// Runs on a tracker's thread, one call at a time.
void OnArrival(std::wstring& deviceKind, std::wstring& deviceId)
{
    CKestraBootCommandHandler handler;
    handler.LaunchDefaultKestra(deviceKind, deviceId);

    std::printf("arrived: %ls %ls\n", deviceKind.c_str(), deviceId.c_str());
    std::fflush(stdout);
    static bool cardCame = false;
    static bool cameraCame = false;
    cardCame = cardCame || deviceKind == L"volume";
    cameraCame = cameraCame || deviceKind == L"camera";
    if (cardCame && cameraCame) {
        ::SetEvent(bothCame);
    }
}

} // namespace

int main()
{
    CKestraBootCommandHandler handler;
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    handler.LoadInformation();
    std::vector<appInfo_tag> all;
    if (words.size() != 1 || !handler.GetAllApplicationInfo(all)) {
        return 2;
    }
    std::printf("%s: %ls, %zu application(s)\n", KESTRABOOT_VERSION_TEXT, words[0].c_str(), all.size());

    if (!handler.TakeControl()) {
        std::puts("somebody else is in control");
        return 3;
    }
    bothCame = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    RegisterDeviceConnectCallback(OnArrival);
    StartDeviceConnectService();
    std::puts("waiting");
    std::fflush(stdout);
    const bool came = ::WaitForSingleObject(bothCame, 120'000) == WAIT_OBJECT_0;
    RegisterDeviceConnectCallback(nullptr);
    ::ExitProcess(came ? 0 : 4); // the trackers end with the process
}
