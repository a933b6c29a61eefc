# Keeps the debug information of the shipped binaries. Each binary is stripped right after linking, so that the tests
# run what users get; its debug information goes to symbols/NAME.debug in the build folder. Both hold the same build
# identifier, a hash of the contents, and the binary names the file (.gnu_debuglink), so that a debugger pairs them.
option(KESTRABOOT_SYMBOLS "Keep the debug information of what is shipped in files of its own" OFF)
set(KESTRABOOT_SYMBOLS_FOLDER ${PROJECT_BINARY_DIR}/symbols)

# Compiles a target of the product with debug information for the binaries that link it.
function(kestraboot_add_debug_information target)
    if(KESTRABOOT_SYMBOLS)
        # Paths relative to a nameless folder, so that the same sources give the same bytes in every folder.
        target_compile_options(${target} PRIVATE -g
            -ffile-prefix-map=${kestraboot_BINARY_DIR}=build -ffile-prefix-map=${kestraboot_SOURCE_DIR}=.)
    endif()
endfunction()

# The same for a program or a DLL, which is split in two after each link. Call it in the folder of the target.
function(kestraboot_keep_symbols target)
    if(NOT KESTRABOOT_SYMBOLS)
        return()
    endif()
    kestraboot_add_debug_information(${target})
    target_link_options(${target} PRIVATE -Wl,--build-id)
    set(binary $<TARGET_FILE:${target}>)
    set(symbols ${KESTRABOOT_SYMBOLS_FOLDER}/$<TARGET_FILE_NAME:${target}>.debug)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory ${KESTRABOOT_SYMBOLS_FOLDER}
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug ${binary} ${symbols}
        COMMAND ${CMAKE_STRIP} -p ${binary}
        COMMAND ${CMAKE_OBJCOPY} -p --add-gnu-debuglink=${symbols} ${binary}
        VERBATIM)
    set_property(GLOBAL APPEND PROPERTY KESTRABOOT_SPLIT_TARGETS ${target})
endfunction()
