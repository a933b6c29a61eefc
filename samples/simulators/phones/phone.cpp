// phone.exe ready|not-ready [ID]
//
// Lets the simulated phone manager report a phone to its host, and exits when the host has accepted the
// report. Waits up to 30 seconds for a host that listens. Exits with 0: reported; 1: nobody listens, or
// the host did not accept it; 2: wrong arguments.
#include "../common/version.h"
#include "phone_pipe.h"

#include <windows.h>
#include <cstdio>
#include <cwchar>

namespace
{

constexpr DWORD kPatience = 30000; // milliseconds
constexpr DWORD kPause = 50;

bool Tell(PhoneNews news, PhoneAnswer& answer)
{
    const ULONGLONG end = ::GetTickCount64() + kPatience;
    DWORD answered = 0;
    while (!::CallNamedPipeW(kPhonePipe, &news, sizeof news, &answer, sizeof answer, &answered,
                             kPatience)) {
        if (::GetLastError() != ERROR_FILE_NOT_FOUND || ::GetTickCount64() > end) {
            return false;
        }
        ::Sleep(kPause); // no host listens yet
    }
    return answered == sizeof answer;
}

} // namespace

extern "C" int wmain(int count, wchar_t** words);

int wmain(int count, wchar_t** words)
{
    if (count > 1 && std::wcscmp(words[1], L"--version") == 0) {
        kestraboot::simulators::PrintVersion("phone");
        return 0;
    }
    const bool ready = count > 1 && std::wcscmp(words[1], L"ready") == 0;
    const bool notReady = count > 1 && std::wcscmp(words[1], L"not-ready") == 0;
    if (count > 3 || !(ready || notReady) || (count == 3 && std::wcslen(words[2]) > 259)) {
        std::fputs("phone ready|not-ready [ID]\n", stderr);
        return 2;
    }
    PhoneNews news = {};
    news.mobileReady = ready ? 1 : 0;
    std::wcsncpy(news.deviceId, count == 3 ? words[2] : L"Phone 1", 259);
    PhoneAnswer answer = 0;
    if (!Tell(news, answer)) {
        std::fprintf(stderr, "phone: nobody listens (error %lu)\n", ::GetLastError());
        return 1;
    }
    if (answer != 0) {
        std::fprintf(stderr, "phone: the host answered 0x%08X\n", static_cast<unsigned>(answer));
        return 1;
    }
    return 0;
}
