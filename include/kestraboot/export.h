/// @file
/// The linker attribute of the exported interface.
#pragma once

#include <cstddef> // defines the macros that identify the standard library

/// Precedes every exported name: a host imports it, the library itself exports it.
#if defined(KESTRABOOT_BUILDING_LIBRARY)
#define KESTRABOOT_API __declspec(dllexport)
#elif defined(KESTRABOOT_LINKED_IN) // the objects are linked into this module (the project's own tests)
#define KESTRABOOT_API
#else
#if defined(__MINGW32__) && (!defined(__GLIBCXX__) || !defined(_GLIBCXX_HAS_GTHREADS))
#error "kestraboot: strings, vectors, exceptions cross the boundary: use libstdc++ with posix threads"
#endif
#if defined(__MINGW32__)
#include "kestraboot/c_runtime.h"
#if KESTRABOOT_FOR_UCRT && !defined(_UCRT)
#error "kestraboot: the library is for the UCRT, the compiler links msvcrt: take the other archive"
#elif !KESTRABOOT_FOR_UCRT && defined(_UCRT)
#error "kestraboot: the library is for msvcrt, the compiler links the UCRT: take the -ucrt archive"
#endif
#endif
#if defined(_GLIBCXX_DEBUG)
#error "kestraboot: _GLIBCXX_DEBUG gives strings and vectors another layout than the library's"
#endif
#define KESTRABOOT_API __declspec(dllimport)
#endif
