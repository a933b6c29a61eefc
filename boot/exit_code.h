// The exit codes of kestraboot.exe.
#pragma once

enum class ExitCode : int {
    Done = 0,               ///< served and was asked to quit, or carried out its arguments
    CannotServe = 1,        ///< a resource that the program needs is not available
    Usage = 2,              ///< arguments that it does not accept
    NotInControl = 3,       ///< another instance is in control, or the OEM file stops the install
    UnknownApplication = 4, ///< "-default" with a name that no compatible application has
};
