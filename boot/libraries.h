// The folders from which the program loads libraries and plugins.
#pragma once

/// Removes the current folder from the search for libraries that are loaded by name. They are then
/// found beside the program, in Windows' own folders or along PATH. Call it first, before anything
/// is loaded. Throws std::bad_alloc.
void SearchNoLibraryInCurrentFolder();

/// Makes the program's own folder the current one, because the library reads "OEM" and "moxplugins"
/// there. If that fails, makes Windows' own folder the current one, which only an administrator can
/// write, and returns false: the folder in which the program was started must not decide what is
/// loaded. Throws std::bad_alloc, and std::runtime_error if neither can be made the current one.
[[nodiscard]] bool WorkInOwnFolder();
