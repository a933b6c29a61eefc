# The reference of the exported interface, a part of the package. scripts/checks/reference.py checks it.
find_program(KESTRABOOT_DOXYGEN doxygen)
if(NOT KESTRABOOT_DOXYGEN)
    message(STATUS "There is no doxygen: the package will have no reference of the interface")
    return()
endif()
set(KESTRABOOT_REFERENCE ${KESTRABOOT_GENERATED}/reference)
file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/kestraboot/*.h)
add_custom_command(OUTPUT ${KESTRABOOT_REFERENCE}/index.html
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${KESTRABOOT_REFERENCE}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${KESTRABOOT_REFERENCE}
    COMMAND ${CMAKE_COMMAND} -E env KESTRABOOT_VERSION=${PROJECT_VERSION} KESTRABOOT_REFERENCE=${KESTRABOOT_REFERENCE}
        ${KESTRABOOT_DOXYGEN} cmake/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    DEPENDS ${headers} ${PROJECT_SOURCE_DIR}/cmake/Doxyfile
    VERBATIM)
add_custom_target(kestraboot_reference ALL DEPENDS ${KESTRABOOT_REFERENCE}/index.html)
add_dependencies(product kestraboot_reference)
