// card_reader.exe: puts a card into Wine's card reader, or takes it out, and tells every top-level
// window, as Windows does (Wine's mount manager tells nobody).
//   card_reader insert E /unix/folder
//   card_reader remove E
#include "tests/support/card_slot.h"

#include <windows.h>

#include <cstdio>
#include <dbt.h>
#include <string>

int main(int argc, char** argv)
{
    using namespace kestraboot::tests;
    const std::string action = argc > 1 ? argv[1] : "";
    bool done = false;
    if (action == "insert" && argc == 4) {
        done = InsertCard(static_cast<wchar_t>(argv[2][0]), argv[3]);
    } else if (action == "remove" && argc == 3) {
        done = TakeCardOut(static_cast<wchar_t>(argv[2][0]));
    } else {
        std::fputs("usage: card_reader insert LETTER UNIX-FOLDER | remove LETTER\n", stderr);
        return 2;
    }
    if (done) {
        const WPARAM event = action == "insert" ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE;
        // Sent, since an arrival cannot be posted. A window that is busy is not waited for.
        ::SendMessageTimeoutW(HWND_BROADCAST, WM_DEVICECHANGE, event, 0, SMTO_ABORTIFHUNG, 500, nullptr);
    } else {
        std::fprintf(stderr, "card_reader: the mount manager refused (error %lu)\n", ::GetLastError());
    }
    return done ? 0 : 1;
}
