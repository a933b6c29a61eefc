/// @file
/// The version of the interface and of everything that is shipped with it. This file is its only source:
/// the version resources of the library and the programs, the CMake package and the archive's name take
/// it from here.
///
/// A host built against 1.x runs with every library of the same major version that is not older than
/// the headers of that host. Until the major version changes, exported names stay and records keep their
/// layout. The file holds preprocessor text alone, so that a resource compiler can read it.
#pragma once

/// Raised when hosts must be rebuilt.
#define KESTRABOOT_VERSION_MAJOR 1
/// Raised when something is added and older hosts still run.
#define KESTRABOOT_VERSION_MINOR 0
/// Raised when something is fixed.
#define KESTRABOOT_VERSION_PATCH 0

/// @cond
#define KESTRABOOT_TEXT_OF(number) KESTRABOOT_TEXT(number)
#define KESTRABOOT_TEXT(number) #number
/// @endcond

/// The three numbers as text, "1.0.0".
#define KESTRABOOT_VERSION_TEXT                                                                         \
    KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_MAJOR)                                                        \
    "." KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_MINOR) "." KESTRABOOT_TEXT_OF(KESTRABOOT_VERSION_PATCH)
