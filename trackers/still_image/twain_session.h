#pragma once

#include "foundation/handles.h"
#include "trackers/still_image/twain.h"

namespace kestraboot
{

struct WindowTraits {
    using Resource = HWND;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource window) noexcept { ::DestroyWindow(window); }
};

using UniqueWindow = UniqueResource<WindowTraits>;

/// The TWAIN source manager, loaded and open while this lives. Use it from one thread, which owns
/// its window.
class TwainSession
{
public:
    TwainSession() noexcept;
    TwainSession(const TwainSession&) = delete;
    TwainSession& operator=(const TwainSession&) = delete;
    ~TwainSession();

    /// False if the source manager is missing or does not open.
    [[nodiscard]] bool IsOpen() const noexcept { return open; }

    /// The first data source of the list. False if there is none.
    [[nodiscard]] bool FirstSource(twain::TW_IDENTITY& source) noexcept;

    /// The source after the last one returned. False at the end.
    [[nodiscard]] bool NextSource(twain::TW_IDENTITY& source) noexcept;

private:
    [[nodiscard]] twain::TW_UINT16 Ask(twain::TW_UINT16 dataArgumentType, twain::TW_UINT16 message,
                                       void* data) noexcept;

    // Destroyed from the last to the first: the window before the library.
    bool open = false;
    twain::TW_IDENTITY application = {};
    UniqueModule sourceManager;
    twain::DSMENTRYPROC entry = nullptr;
    UniqueWindow parent;
};

} // namespace kestraboot
