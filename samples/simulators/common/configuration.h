// The configuration of the simulators of imaging devices: small UTF-8 text files, one entry a line, "#"
// begins a comment. The files are in the folder that the environment variable KESTRABOOT_SIMULATORS
// names, or else beside the simulator itself. They are read at every use, so that a change takes effect
// at once. Replace a file in one move, because a simulator may be reading it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kestraboot::simulators
{

/// One line: the first word, and the rest after the blanks.
struct Entry {
    std::string word;
    std::wstring rest;
};

/// No entries when there is no such file.
[[nodiscard]] std::vector<Entry> ReadEntries(const wchar_t* file);

[[nodiscard]] bool Says(const std::vector<Entry>& entries, const char* word);

/// Adds a line of UTF-8 to a log if the log exists, and creates none.
void AddToLog(const wchar_t* file, const std::string& line);

[[nodiscard]] std::wstring FromUtf8(const std::string& text);
[[nodiscard]] std::string ToUtf8(const std::wstring& text);

} // namespace kestraboot::simulators
