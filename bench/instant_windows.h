#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::bench
{

/// While it lives, this program's calls of Windows for a card, for drives and for the registry are
/// answered at once, from memory: what remains is the library's own time, and a few nanoseconds a call.
/// Of Windows are left the locks, and operator new.
class InstantWindows
{
public:
    static constexpr int kFiles =
        1000; ///< in the one folder of the card; none has an extension of media
    static constexpr int kApplications = 64; ///< each with its own product key, all texts and 16 formats
    static constexpr int kDrives = 20;       ///< removable ones with a medium

    InstantWindows();

private:
    tests::ImportPatch patches[14];
};

} // namespace kestraboot::bench
