#pragma once

#include <string>

/// Writes a line to the debugger output, where kestratrace.exe shows it.
///
/// Throws nothing: without memory the line is left out.
///
/// @param about the folder, or the value in the registry
/// @param what one of the texts of texts.h, and what belongs behind it
void Trace(const std::wstring& about, const std::wstring& what) noexcept;
