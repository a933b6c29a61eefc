// The WIA service with one camera, in static storage.
#pragma once

#include "tests/support/import_patch.h"

#include <wia.h>

namespace kestraboot::tests
{

inline constexpr const wchar_t* kCamera = L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001";

/// The library under test uses it while it lives. One at a time.
class WiaCamera
{
public:
    WiaCamera();

    /// The callback that was registered for connect events; null if there is none.
    [[nodiscard]] static IWiaEventCallback* Callback() noexcept;

    /// Writes each missing release into the journal.
    static void ShowReferences();

private:
    ImportPatch create, freeValues;
};

} // namespace kestraboot::tests
