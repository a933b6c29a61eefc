# Library and host share one C++ runtime as DLLs, since strings and exceptions cross the boundary between
# them. The three DLLs lie beside the compiler; they are copied beside the programs and installed with them.
set(KESTRABOOT_RUNTIME_DLLS)
if(MINGW)
    set(names libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    foreach(name IN LISTS names)
        # The path of a file that the linker would find, or the bare name.
        execute_process(COMMAND ${KESTRABOOT_RUNTIME_FINDER} -print-file-name=${name}
            OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        if(NOT IS_ABSOLUTE ${found})
            message(FATAL_ERROR "The compiler's runtime library ${name} was not found.")
        endif()
        list(APPEND KESTRABOOT_RUNTIME_DLLS ${found})
    endforeach()
    file(COPY ${KESTRABOOT_RUNTIME_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()
