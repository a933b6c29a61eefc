# The compile and link flags of the project. Targets take them from kestraboot_flags.
add_library(kestraboot_flags INTERFACE)
target_compile_definitions(kestraboot_flags INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
    _WIN32_WINNT=0x0600) # Vista; younger functions are looked up at run time
target_include_directories(kestraboot_flags INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)

if(MSVC) # never tried: that compiler is not on the build machine
    target_compile_options(kestraboot_flags INTERFACE /W4 /WX /permissive- /utf-8)
    target_compile_definitions(kestraboot_flags INTERFACE _CRT_SECURE_NO_WARNINGS)
    target_link_options(kestraboot_flags INTERFACE /DYNAMICBASE /NXCOMPAT /HIGHENTROPYVA)
else()
    target_compile_options(kestraboot_flags INTERFACE
        -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wcast-qual
        -Wnon-virtual-dtor -Wold-style-cast -Wundef -Wmissing-declarations -Wimplicit-fallthrough)
    # GCC 12 reports overlaps in the concatenation of strings where there are none (GCC bug 105329).
    target_compile_options(kestraboot_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    target_link_options(kestraboot_flags INTERFACE
        -Wl,--dynamicbase,--nxcompat,--high-entropy-va -Wl,--fatal-warnings
        -Wl,--no-insert-timestamp) # the same sources give the same bytes
endif()

# If CMAKE_UNITY_BUILD is set, the files of one folder are compiled as one. This takes a third of the time, most of
# which goes into Windows' headers and into the same templates again and again. The build of the second compiler keeps
# the files apart, so that each file still has to compile alone.
function(kestraboot_compile_by_folder target)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH folder)
        string(MAKE_C_IDENTIFIER "folder_${folder}" group)
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

# GCC for posix threads adds this library by itself. Each target needs it: the tests' libraries need it after them.
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    link_libraries(pthread)
endif()

option(KESTRABOOT_COVERAGE "Count which lines the tests reach" OFF)
if(KESTRABOOT_COVERAGE)
    target_compile_options(kestraboot_flags INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(kestraboot_flags INTERFACE --coverage)
endif()

option(KESTRABOOT_HARDENED "Trap undefined behaviour, misuse of the standard library and overruns" OFF)
if(KESTRABOOT_HARDENED)
    # COM passes a GUID at its address in the packet that brought it, aligned or not.
    target_compile_options(kestraboot_flags INTERFACE
        -fsanitize=undefined -fsanitize-undefined-trap-on-error -fno-sanitize=vptr,alignment -fstack-protector-strong)
    target_compile_definitions(kestraboot_flags INTERFACE _GLIBCXX_ASSERTIONS _FORTIFY_SOURCE=2)
    target_link_libraries(kestraboot_flags INTERFACE -l:libssp.a) # within each binary, because programs are copied
endif()
