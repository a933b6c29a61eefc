// How the names of the exported interface are marked for the linker.
#pragma once

#if defined(KESTRABOOT_BUILDING_LIBRARY)
#define KESTRABOOT_API __declspec(dllexport)
#elif defined(KESTRABOOT_LINKED_IN) // the objects are part of this very module (the project's own tests)
#define KESTRABOOT_API
#else
#define KESTRABOOT_API __declspec(dllimport)
#endif
