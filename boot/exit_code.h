// What kestraboot.exe answers to whoever started it.
#pragma once

enum class ExitCode : int {
    Done = 0,               ///< served and was asked to quit, or did what its arguments say
    CannotServe = 1,        ///< something that the program needs could not be had
    Usage = 2,              ///< arguments that it does not act on
    NotInControl = 3,       ///< another instance is in control, or the OEM file stops the install
    UnknownApplication = 4, ///< "-default" with a name that no compatible application has
};
