#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::bench
{

/// While it lives, memory answers this program's calls of Windows for a card, for drives and for the
/// registry at once. The remaining time is the library's own, and a few nanoseconds for each call. The
/// locks and operator new are still those of Windows.
class InstantWindows
{
public:
    static constexpr int kFiles =
        1000; ///< in the one folder of the card; none has an extension of media
    static constexpr int kApplications = 64; ///< each with its own product key, all texts and 16 formats
    static constexpr int kDrives = 20;       ///< removable ones, each with a medium

    InstantWindows();

private:
    tests::ImportPatch patches[14];
};

} // namespace kestraboot::bench
