# What `cmake --install` lays out, and what `cpack` puts into an archive: bin/ to run, include/ and lib/ to build
# a host or a plugin against, samples/ and docs/ to read. tests/package compares it with its list.
include(CMakePackageConfigHelpers)

# ---- Programs and the library
install(TARGETS kestraboot kestraboot_mox_plugin EXPORT kestrabootTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS kestraboot_boot RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
set(KESTRABOOT_TOOLS kestratrace)
if(TARGET kestractl)
    list(APPEND KESTRABOOT_TOOLS kestractl)
endif()
install(TARGETS ${KESTRABOOT_TOOLS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The runtime that the library and its host share. Stripped where the rest is: it is ten times the size else.
install(FILES ${KESTRABOOT_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
set(KESTRABOOT_RUNTIME_NAMES)
foreach(dll IN LISTS KESTRABOOT_RUNTIME_DLLS)
    cmake_path(GET dll FILENAME name)
    list(APPEND KESTRABOOT_RUNTIME_NAMES ${name})
    install(CODE "
        if(CMAKE_INSTALL_DO_STRIP)
            execute_process(COMMAND \"${CMAKE_STRIP}\"
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${name}\"
                COMMAND_ERROR_IS_FATAL ANY)
        endif()")
endforeach()
list(JOIN KESTRABOOT_RUNTIME_NAMES " " KESTRABOOT_RUNTIME_NAMES)

# ---- To build against
install(DIRECTORY include/kestraboot ${PROJECT_BINARY_DIR}/generated/include/kestraboot
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kestraboot)
install(EXPORT kestrabootTargets NAMESPACE kestraboot:: DESTINATION ${package_folder})
# The variable of CMake that is true for the compilers whose hosts understand this library.
if(MSVC)
    set(KESTRABOOT_COMPILER_FAMILY MSVC)
    set(KESTRABOOT_RUNTIME "Visual C++ runtime as DLL")
else()
    set(KESTRABOOT_COMPILER_FAMILY MINGW)
    set(KESTRABOOT_RUNTIME "MinGW-w64, 64-bit, posix threads, libstdc++ as DLL, ${KESTRABOOT_C_RUNTIME}")
endif()
foreach(name IN ITEMS kestrabootConfig kestrabootHostRuntime)
    configure_package_config_file(cmake/${name}.cmake.in ${PROJECT_BINARY_DIR}/${name}.cmake
        INSTALL_DESTINATION ${package_folder}
        PATH_VARS CMAKE_INSTALL_BINDIR)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.cmake DESTINATION ${package_folder})
endforeach()
# Strings and vectors cross the boundary: only a compatible library will do.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake DESTINATION ${package_folder})

# ---- Samples: their sources, the reference host's among them, and two built ones
install(DIRECTORY samples/ DESTINATION samples)
install(DIRECTORY boot DESTINATION samples)
install(FILES scripts/wine.sh DESTINATION samples) # the guides run what they build with it
install(TARGETS viewer sample_plugin
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})

# ---- To read
install(FILES README.md CONTRIBUTING.md DESTINATION .)
install(FILES CHANGELOG.md DESTINATION . OPTIONAL)
install(DIRECTORY docs DESTINATION .)
configure_file(cmake/VERSION.txt.in ${PROJECT_BINARY_DIR}/VERSION.txt @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VERSION.txt DESTINATION .)
# On what terms the runtime may be passed on. Debian keeps the texts with the packages it comes from.
function(kestraboot_install_terms name package)
    set(text /usr/share/doc/${package}/copyright)
    if(EXISTS ${text})
        install(FILES ${text} DESTINATION licenses RENAME ${name})
    else()
        message(WARNING "${text} is missing: the package will not say on what terms the runtime is passed on.")
    endif()
endfunction()
if(MINGW)
    kestraboot_install_terms(libstdc++-and-libgcc.txt gcc-mingw-w64-base)
    if(KESTRABOOT_UCRT)
        kestraboot_install_terms(libwinpthread.txt mingw-w64-ucrt64-dev)
    else()
        kestraboot_install_terms(libwinpthread.txt mingw-w64-x86-64-dev)
    endif()
endif()

# ---- The archive
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR Corvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME kestraboot-${PROJECT_VERSION}-win64)
if(MINGW AND KESTRABOOT_UCRT)
    string(APPEND CPACK_PACKAGE_FILE_NAME -ucrt)
endif()
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
