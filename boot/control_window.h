// The window by which other instances find the one in control.
#pragma once

/// Makes the hidden window "Corvane Kestrafetch Boot" and serves its messages until it gets WM_QUIT,
/// posted or sent. False when the window cannot be made.
[[nodiscard]] bool ServeUntilAskedToQuit() noexcept;
