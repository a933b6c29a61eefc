# Commit, version and compiler of a build: kestraboot/build.h, VERSION.txt, and the file time in archives. Each build
# checks them, because a commit changes no file that CMake knows of; they are written only when they differ.
set(KESTRABOOT_GENERATED ${PROJECT_BINARY_DIR}/generated)
set(KESTRABOOT_BUILD_HEADER ${KESTRABOOT_GENERATED}/include/kestraboot/build.h)
set(KESTRABOOT_VERSION_PAGE ${KESTRABOOT_GENERATED}/VERSION.txt)
set(KESTRABOOT_SOURCE_DATE ${KESTRABOOT_GENERATED}/source_date.txt)
set(write_build
    ${CMAKE_COMMAND} -DSOURCES=${PROJECT_SOURCE_DIR} -DHEADER=${KESTRABOOT_BUILD_HEADER}
    -DPAGE=${KESTRABOOT_VERSION_PAGE} -DDATE=${KESTRABOOT_SOURCE_DATE} -DPROJECT_VERSION=${PROJECT_VERSION}
    -DCOMPILER=${CMAKE_CXX_COMPILER_ID}\ ${CMAKE_CXX_COMPILER_VERSION} -DRUNTIME=${KESTRABOOT_RUNTIME}
    -P ${CMAKE_CURRENT_LIST_DIR}/write_build.cmake)
execute_process(COMMAND ${write_build} COMMAND_ERROR_IS_FATAL ANY) # for readers before the first build
add_custom_target(kestraboot_build COMMAND ${write_build} BYPRODUCTS ${KESTRABOOT_BUILD_HEADER} VERBATIM)

# Lets a file of a target include kestraboot/build.h; it is compiled again when a commit was made.
function(kestraboot_use_build target)
    target_include_directories(${target} PRIVATE ${KESTRABOOT_GENERATED}/include)
    add_dependencies(${target} kestraboot_build)
endfunction()
