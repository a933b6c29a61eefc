#pragma once

#include <windows.h>

#include <string>

/// The icon that an application's record names ("C:\Apps\viewer.exe,0", "...exe, 111", a bare file);
/// if it cannot be loaded, the first one of `program`, and the system's own for a program that has none.
/// The caller destroys it.
HICON LoadRecordIcon(const std::wstring& reference, const std::wstring& program, int size);
