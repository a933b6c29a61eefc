// The window by which other instances and the session find the one in control.
#pragma once

/// Makes the hidden window "Corvane Kestrafetch Boot". False when it cannot be made. For the thread that
/// serves it.
[[nodiscard]] bool MakeControlWindow() noexcept;

/// Serves the window until it gets WM_QUIT, posted or sent, or is closed, or the session ends. From the
/// first of these on no application is started any more.
void ServeUntilAskedToQuit() noexcept;
