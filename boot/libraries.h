// Where the program's libraries and plugins come from.
#pragma once

/// Takes the current folder out of the search for libraries that are loaded by name: they are found
/// beside the program, among Windows' own, or along PATH. First of all, before anything is loaded.
/// Throws std::bad_alloc.
void SearchNoLibraryInCurrentFolder();

/// Makes the program's own folder the current one, in which "OEM" and "moxplugins" are looked for. Where
/// that fails it is Windows' own, which nobody can write into but an administrator, and the answer is
/// false: a folder that the program happened to be started from must not decide what is loaded.
/// Throws std::bad_alloc, and std::runtime_error where neither can be made the current one.
[[nodiscard]] bool WorkInOwnFolder();
