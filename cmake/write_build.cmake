# Writes HEADER, PAGE and DATE if they differ from the commit of SOURCES, the PROJECT_VERSION, the COMPILER and its
# RUNTIME. DATE: that commit's seconds since 1970, or SOURCE_DATE_EPOCH if it is set (reproducible-builds.org).
find_program(GIT git)
set(commit)
set(date)
if(GIT)
    execute_process(COMMAND ${GIT} -C ${SOURCES} describe --always --dirty=-changed --abbrev=12 --exclude=*
        OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    execute_process(COMMAND ${GIT} -C ${SOURCES} log -1 --format=%ct
        OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT commit) # sources without their history
    set(commit unknown)
endif()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(date $ENV{SOURCE_DATE_EPOCH})
elseif(NOT date)
    set(date 315532800) # 1980-01-01, the first day of the archive's format
endif()

file(CONFIGURE OUTPUT ${HEADER} @ONLY CONTENT [[
/// @file
/// From which sources the library of this package was built, and with what. Written by the build.
#pragma once

/// The commit: 12 hexadecimal digits, with "-changed" appended where files differed from it; or "unknown".
#define KESTRABOOT_BUILD_COMMIT "@commit@"
/// The compiler and its version, such as "GNU 12.2.0".
#define KESTRABOOT_BUILD_COMPILER "@COMPILER@"
/// The runtime that a host shares with the library.
#define KESTRABOOT_BUILD_RUNTIME "@RUNTIME@"
/// All of it, as every program answers it to `--version` below the line with its name.
#define KESTRABOOT_BUILD_TEXT \
    "commit " KESTRABOOT_BUILD_COMMIT "\n" \
    "compiler " KESTRABOOT_BUILD_COMPILER "\n" \
    "runtime " KESTRABOOT_BUILD_RUNTIME "\n"
]])
file(CONFIGURE OUTPUT ${PAGE} @ONLY CONTENT [[
kestraboot @PROJECT_VERSION@
commit @commit@
compiler @COMPILER@
runtime @RUNTIME@
]])
file(CONFIGURE OUTPUT ${DATE} CONTENT "${date}\n")
