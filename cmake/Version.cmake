# The version is written once, in include/kestraboot/version.h; the project reads it there. Included before
# project(). Programs and the library carry it in a resource: kestraboot_add_version.
set(version_header ${CMAKE_CURRENT_LIST_DIR}/../include/kestraboot/version.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${version_header})
set(KESTRABOOT_VERSION)
foreach(part IN ITEMS MAJOR MINOR PATCH)
    file(STRINGS ${version_header} line REGEX "^#define KESTRABOOT_VERSION_${part} [0-9]+$")
    if(NOT line MATCHES "([0-9]+)$")
        message(FATAL_ERROR "${version_header} gives no KESTRABOOT_VERSION_${part}.")
    endif()
    list(APPEND KESTRABOOT_VERSION ${CMAKE_MATCH_1})
endforeach()
list(JOIN KESTRABOOT_VERSION . KESTRABOOT_VERSION)

# Gives a program or the library its version resource.
function(kestraboot_add_version target file_name description)
    if(file_name MATCHES "\\.dll$")
        set(file_type VFT_DLL)
    else()
        set(file_type VFT_APP)
    endif()
    cmake_path(GET file_name STEM internal_name)
    set(resource ${CMAKE_BINARY_DIR}/generated/${target}_version.rc)
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
    set_property(SOURCE ${resource} TARGET_DIRECTORY ${target} APPEND PROPERTY OBJECT_DEPENDS
        ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../include/kestraboot/version.h)
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../include)
endfunction()
