/// @file
/// The version of the interface and of everything that is shipped with it, in the one place where it is
/// written: the build reads it here for the library's and the programs' version resources, for the CMake
/// package and for the archive's name.
///
/// A host built against 1.x runs with every library of the same major version that is not older than
/// its headers: until the major version changes, exported names stay, and records keep their layout.
/// Plain preprocessor text, so that a resource compiler reads it too.
#pragma once

/// Changes when a host must be built again.
#define KESTRABOOT_VERSION_MAJOR 1
/// Changes when something is added that an older host does not miss.
#define KESTRABOOT_VERSION_MINOR 0
/// Changes when something is mended.
#define KESTRABOOT_VERSION_PATCH 0

/// @cond
#define KESTRABOOT_TEXT_OF(number) KESTRABOOT_TEXT(number)
#define KESTRABOOT_TEXT(number) #number
/// @endcond

/// The three numbers as text, "1.0.0".
#define KESTRABOOT_VERSION_TEXT                                                                         \
    KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_MAJOR)                                                        \
    "." KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_MINOR) "." KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_PATCH)
