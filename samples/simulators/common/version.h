#pragma once

namespace kestraboot::simulators
{

/// The version of a program, and which build it is, on standard output.
void PrintVersion(const char* program);

/// Does so for --version, where that is the first word. True: nothing else is to be done.
[[nodiscard]] bool AnsweredVersion(const char* program, int count, const char* const* words);

} // namespace kestraboot::simulators
