// The data that an action exchanges with the installer.
#pragma once

#include <windows.h>

#include <msi.h>
#include <string>

/// Empty if it is not set.
std::wstring Property(MSIHANDLE install, const wchar_t* name);

/// Adds a line to the installer's log.
void Log(MSIHANDLE install, const std::wstring& text);
