#include "bench/card.h"

#include "samples/simulators/cards/card_slot.h"

#include <windows.h>
#include <stdexcept>

namespace kestraboot::bench
{
namespace
{

/// The mount manager answers before the letter appears or disappears.
void AwaitLetter(wchar_t letter, bool there)
{
    const DWORD bit = DWORD{1} << (letter - L'A');
    while (((::GetLogicalDrives() & bit) != 0) != there) {
        ::Sleep(1);
    }
}

} // namespace

Card::Card(wchar_t driveLetter, const std::string& unixFolder) : letter(driveLetter), folder(unixFolder)
{
    Insert();
}

Card::~Card()
{
    static_cast<void>(simulators::TakeCardOut(letter));
}

void Card::Insert() const
{
    if (!simulators::InsertCard(letter, folder)) {
        throw std::runtime_error("the mount manager did not insert the card " + folder);
    }
    AwaitLetter(letter, true);
}

void Card::TakeOut() const
{
    if (!simulators::TakeCardOut(letter)) {
        throw std::runtime_error("the mount manager did not remove the card " + folder);
    }
    AwaitLetter(letter, false);
}

} // namespace kestraboot::bench
