// The program's use of a console. The program is of the Windows subsystem and has no console of its
// own, so that no window opens at log-on.
#pragma once

/// For a run that prints something and ends at once: connects standard output to the console from
/// which the program was started, if there is one. Redirected output is unchanged.
void JoinParentConsole() noexcept;

/// For a run that stays, or starts a program that does: releases the console. Otherwise the run
/// would keep the window open until log-off, and would end with it, or by a Ctrl+C that is meant
/// for another program. The programs that it starts inherit no console either. Output that is
/// redirected to a file or a pipe is unchanged.
void LeaveConsole() noexcept;

/// Joins the parent's console and writes the text.
void Answer(const wchar_t* text) noexcept;

/// Writes a line about a failure that somebody must fix to the debugger output and to the parent's
/// console.
void ReportFailure(const wchar_t* line) noexcept;
