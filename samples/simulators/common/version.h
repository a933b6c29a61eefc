#pragma once

namespace kestraboot::simulators
{

/// The version of a program, and which build it is, on standard output.
void PrintVersion(const char* program);

/// Does so for --version, if that is the first word. True: the program is done.
[[nodiscard]] bool AnsweredVersion(const char* program, int count, const char* const* words);

} // namespace kestraboot::simulators
