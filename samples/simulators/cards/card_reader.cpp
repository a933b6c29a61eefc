// card_reader.exe: inserts a card into Wine's card reader, or removes it, and notifies every top-level
// window, as Windows does (Wine's mount manager notifies nobody).
//   card_reader insert E /unix/folder
//   card_reader remove E
#include "../common/version.h"
#include "card_slot.h"
#include "volume_message.h"

#include <windows.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    using namespace kestraboot::simulators;
    if (AnsweredVersion("card_reader", argc, argv)) {
        return 0;
    }
    const std::string action = argc > 1 ? argv[1] : "";
    const wchar_t letter = argc > 2 ? static_cast<wchar_t>(argv[2][0]) : L'\0';
    const bool isLetter = letter >= L'A' && letter <= L'Z';
    bool done = false;
    if (isLetter && action == "insert" && argc == 4) {
        done = InsertCard(letter, argv[3]);
    } else if (isLetter && action == "remove" && argc == 3) {
        done = TakeCardOut(letter);
    } else {
        std::fputs("usage: card_reader insert LETTER UNIX-FOLDER | remove LETTER\n", stderr);
        return 2;
    }
    if (done) {
        const WPARAM event = action == "insert" ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE;
        // Does not wait for a busy window.
        SendVolumeMessage(HWND_BROADCAST, event, letter, SMTO_ABORTIFHUNG, 500);
    } else {
        std::fprintf(stderr, "card_reader: the mount manager refused (error %lu)\n", ::GetLastError());
    }
    return done ? 0 : 1;
}
