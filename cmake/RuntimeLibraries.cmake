# The library and its host share one C++ runtime as DLLs, because strings and exceptions cross the boundary between
# them. The three DLLs are in the compiler's folders; they are copied beside the programs and installed with them.
set(KESTRABOOT_RUNTIME_DLLS)
if(MINGW)
    set(names libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    foreach(name IN LISTS names)
        # Returns the path of a file that the linker would find, or the bare name.
        execute_process(COMMAND ${KESTRABOOT_RUNTIME_FINDER} -print-file-name=${name}
            OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        if(NOT IS_ABSOLUTE ${found})
            message(FATAL_ERROR "The compiler's runtime library ${name} was not found.")
        endif()
        list(APPEND KESTRABOOT_RUNTIME_DLLS ${found})
    endforeach()
    file(COPY ${KESTRABOOT_RUNTIME_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()

# The identity of that runtime: the C runtime below it, and the release of libstdc++ with its date. A host needs the
# same C runtime, and the newer libstdc++ of the two. By c_runtime.h the headers refuse a host of the other C runtime.
set(KESTRABOOT_UCRT 1) # Visual C++ has no other
if(MINGW)
    set(probe ${PROJECT_BINARY_DIR}/generated/runtime.cpp)
    file(WRITE ${probe} "#include <cstddef>\n")
    execute_process(COMMAND ${KESTRABOOT_RUNTIME_FINDER} -E -dM ${probe}
        OUTPUT_VARIABLE macros COMMAND_ERROR_IS_FATAL ANY)
    if(NOT macros MATCHES "#define _UCRT[ \n]")
        set(KESTRABOOT_UCRT 0)
    endif()
    foreach(name IN ITEMS _GLIBCXX_RELEASE __GLIBCXX__)
        if(NOT macros MATCHES "#define ${name} ([0-9]+)\n")
            message(FATAL_ERROR "The compiler's libstdc++ gives no ${name}.")
        endif()
        set(KESTRABOOT${name} ${CMAKE_MATCH_1})
    endforeach()
endif()
if(KESTRABOOT_UCRT)
    set(KESTRABOOT_C_RUNTIME UCRT)
else()
    set(KESTRABOOT_C_RUNTIME msvcrt)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/c_runtime.h.in
    ${PROJECT_BINARY_DIR}/generated/include/kestraboot/c_runtime.h @ONLY)
if(MSVC)
    set(KESTRABOOT_RUNTIME "Visual C++ runtime as DLL")
else()
    set(KESTRABOOT_RUNTIME "MinGW-w64, 64-bit, posix threads, libstdc++ as DLL, ${KESTRABOOT_C_RUNTIME}")
endif()
