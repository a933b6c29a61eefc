# Clang with the headers, libraries and linker of Debian's MinGW-w64.
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw-gcc.cmake)
execute_process(COMMAND ${KESTRABOOT_RUNTIME_FINDER} -print-libgcc-file-name
    OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc_folder ${libgcc} DIRECTORY)

set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_FLAGS_INIT "-isystem ${gcc_folder}/include/c++ -isystem ${gcc_folder}/include/c++/x86_64-w64-mingw32")
foreach(kind IN ITEMS EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -L${gcc_folder}")
endforeach()
# LLVM's own tool does not know the symbol tables of Debian's runtime DLLs.
find_program(CMAKE_STRIP x86_64-w64-mingw32-strip)
