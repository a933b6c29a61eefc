// Still imaging with one camera, and a TWAIN source manager, in static storage.
#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::tests
{

inline constexpr const wchar_t* kTwainSource = L"Fine Scan with a long name";

/// The library under test uses it while it lives. One at a time.
class StillImaging
{
public:
    StillImaging();

    static void PlugCamera(bool isIn) noexcept;

    /// Writes each missing release into the journal.
    static void ShowReferences();

private:
    ImportPatch load, find, free, freeLocal;
};

} // namespace kestraboot::tests
