// What the program has of a console. It is of the Windows subsystem and has none of its own, so that
// log-on shows no window.
#pragma once

/// For a run that ends at once and has something to say: lets standard output reach the console that the
/// program was started from, if there is one. Output that was redirected stays as it is.
void JoinParentConsole() noexcept;

/// For a run that stays, or starts a program that does: gives back what it has of a console. Such a run
/// would keep the window open until log-off, and end with it, or by a Ctrl+C meant for something else.
/// What it starts inherits none of it either. Output that was redirected to a file or a pipe stays as it
/// is.
void LeaveConsole() noexcept;

/// Joins the parent's console and writes the text.
void Answer(const wchar_t* text) noexcept;

/// Writes a line that somebody must act on to the debugger output, and to the parent's console.
void ReportFailure(const wchar_t* line) noexcept;
