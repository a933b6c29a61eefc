# The header-only libraries of the tools alone: CLI11 for options, nlohmann-json for JSON. Debian keeps them in
# /usr/include, which a cross compiler must not search, because the rest of that folder is not for Windows. So their
# two folders are linked into the build tree, and the compiler searches these links.
add_library(kestraboot_tool_libraries INTERFACE)
target_include_directories(kestraboot_tool_libraries SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/tool_libraries)

function(kestraboot_add_tool_library folder header package)
    find_path(KESTRABOOT_${folder}_HEADERS ${folder}/${header} NO_CMAKE_FIND_ROOT_PATH
        DOC "The folder that holds ${folder}/${header}")
    if(NOT KESTRABOOT_${folder}_HEADERS)
        message(FATAL_ERROR "${folder}/${header} is missing: scripts/setup.sh installs it (Debian's package ${package}).")
    endif()
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/tool_libraries)
    file(REMOVE ${PROJECT_BINARY_DIR}/tool_libraries/${folder})
    file(CREATE_LINK ${KESTRABOOT_${folder}_HEADERS}/${folder} ${PROJECT_BINARY_DIR}/tool_libraries/${folder}
        COPY_ON_ERROR SYMBOLIC)
endfunction()
kestraboot_add_tool_library(CLI CLI.hpp libcli11-dev)
kestraboot_add_tool_library(nlohmann json.hpp nlohmann-json3-dev)
