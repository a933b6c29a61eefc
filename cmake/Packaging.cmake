# The layout of `cmake --install` and of the archives of `cpack`: bin/ to run, include/ and lib/ to build a host or a
# plugin against, samples/ and docs/ to read. tests/package compares it with its list.
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

# The runtime that the library and its host share. It is stripped with the rest, because it is ten times the size else.
install(FILES ${KESTRABOOT_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
set(KESTRABOOT_RUNTIME_NAMES)
foreach(dll IN LISTS KESTRABOOT_RUNTIME_DLLS)
    cmake_path(GET dll FILENAME name)
    list(APPEND KESTRABOOT_RUNTIME_NAMES ${name})
    install(CODE "
        set(strip \"${KESTRABOOT_SYMBOLS}\")
        if(strip OR CMAKE_INSTALL_DO_STRIP)
            execute_process(COMMAND \"${CMAKE_STRIP}\" -p
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${name}\"
                COMMAND_ERROR_IS_FATAL ANY)
        endif()")
endforeach()
list(JOIN KESTRABOOT_RUNTIME_NAMES " " KESTRABOOT_RUNTIME_NAMES)

# ---- To build against
install(DIRECTORY include/kestraboot ${KESTRABOOT_GENERATED}/include/kestraboot
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kestraboot)
install(EXPORT kestrabootTargets NAMESPACE kestraboot:: DESTINATION ${package_folder})
# The CMake variable that is true for the compilers whose hosts can use this library.
if(MSVC)
    set(KESTRABOOT_COMPILER_FAMILY MSVC)
else()
    set(KESTRABOOT_COMPILER_FAMILY MINGW)
endif()
foreach(name IN ITEMS kestrabootConfig kestrabootHostRuntime)
    configure_package_config_file(cmake/${name}.cmake.in ${PROJECT_BINARY_DIR}/${name}.cmake
        INSTALL_DESTINATION ${package_folder}
        PATH_VARS CMAKE_INSTALL_BINDIR)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.cmake DESTINATION ${package_folder})
endforeach()
# Strings and vectors cross the boundary, so only a compatible library will do.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake DESTINATION ${package_folder})

# For anybody without a tool chain file, and for anybody who does not use CMake.
if(MINGW)
    string(REPLACE "g++" "gcc" package_c_compiler ${KESTRABOOT_RUNTIME_FINDER})
    string(REGEX REPLACE "-g\\+\\+.*$" "-windres" package_rc_compiler ${KESTRABOOT_RUNTIME_FINDER})
    configure_file(cmake/toolchain.cmake.in ${KESTRABOOT_GENERATED}/toolchain.cmake @ONLY)
    install(FILES ${KESTRABOOT_GENERATED}/toolchain.cmake DESTINATION ${package_folder})
    configure_file(cmake/kestraboot.pc.in ${KESTRABOOT_GENERATED}/kestraboot.pc @ONLY)
    install(FILES ${KESTRABOOT_GENERATED}/kestraboot.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

# ---- Samples: their sources, the reference host's among them, and three built ones
install(DIRECTORY samples/ DESTINATION samples
    PATTERN *.sh PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(DIRECTORY boot DESTINATION samples)
install(FILES scripts/wine.sh DESTINATION samples) # the guides run their programs with it
install(TARGETS viewer sample_plugin boot_actions
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})
# The simulated devices, built and as sources, with the two headers of the library that they share. They are not in
# bin/, because a program beside them would load sti.dll and twain_32.dll instead of Windows' own.
install(TARGETS ${KESTRABOOT_SIMULATORS}
    RUNTIME DESTINATION samples/simulators/bin
    LIBRARY DESTINATION samples/simulators/bin)
install(FILES trackers/still_image/twain.h DESTINATION samples/simulators/trackers/still_image)
install(FILES trackers/wia/wia_identifiers.h DESTINATION samples/simulators/trackers/wia)

# ---- To read
install(FILES README.md CONTRIBUTING.md SECURITY.md DESTINATION .)
install(FILES CHANGELOG.md DESTINATION . OPTIONAL)
install(DIRECTORY docs DESTINATION .)
if(KESTRABOOT_REFERENCE)
    install(DIRECTORY ${KESTRABOOT_REFERENCE} DESTINATION .)
endif()
install(FILES ${KESTRABOOT_VERSION_PAGE} DESTINATION .)
# The licences of the runtime and of the libraries that are compiled into the tools. Debian keeps the texts with the
# packages they come from.
function(kestraboot_install_terms name package)
    set(text /usr/share/doc/${package}/copyright)
    if(EXISTS ${text})
        install(FILES ${text} DESTINATION licenses RENAME ${name})
    else()
        message(WARNING "${text} is missing: the package will not say on what terms ${package} is passed on.")
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
kestraboot_install_terms(cli11.txt libcli11-dev)
kestraboot_install_terms(nlohmann-json.txt nlohmann-json3-dev)
if(KESTRABOOT_REFERENCE) # the scripts and pictures in it
    kestraboot_install_terms(doxygen.txt doxygen)
endif()

# ---- Signatures and the bill of materials, when every file is in its place
set(KESTRABOOT_SIGN_COMMAND "" CACHE STRING
    "A command that signs the file whose path it gets: each of our binaries in place, each archive beside it. \
The environment variable of the same name goes before it")
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(CPACK_PACKAGE_FILE_NAME kestraboot-${PROJECT_VERSION}-win64)
if(MINGW AND KESTRABOOT_UCRT)
    string(APPEND CPACK_PACKAGE_FILE_NAME -ucrt)
endif()
list(JOIN KESTRABOOT_RUNTIME_DLLS " " KESTRABOOT_RUNTIME_DLLS_TO_LIST)
configure_file(cmake/finish_install.cmake.in ${KESTRABOOT_GENERATED}/finish_install.cmake @ONLY)
install(CODE "include(\"${KESTRABOOT_GENERATED}/finish_install.cmake\")")

# ---- The debug information of our binaries, in a separate archive; an installation leaves it out
if(KESTRABOOT_SYMBOLS)
    install(DIRECTORY ${KESTRABOOT_SYMBOLS_FOLDER}/ DESTINATION . COMPONENT symbols EXCLUDE_FROM_ALL)
    install(FILES ${KESTRABOOT_VERSION_PAGE} DESTINATION . COMPONENT symbols EXCLUDE_FROM_ALL)
endif()

# ---- The archives
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR Corvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_COMPONENTS_GROUPING IGNORE) # one archive for each component
set(CPACK_COMPONENTS_ALL Unspecified)
set(CPACK_ARCHIVE_UNSPECIFIED_FILE_NAME ${CPACK_PACKAGE_FILE_NAME})
if(KESTRABOOT_SYMBOLS)
    list(APPEND CPACK_COMPONENTS_ALL symbols)
    set(CPACK_ARCHIVE_SYMBOLS_FILE_NAME ${CPACK_PACKAGE_FILE_NAME}-symbols)
else()
    set(CPACK_STRIP_FILES ON)
endif()
set(CPACK_POST_BUILD_SCRIPTS ${KESTRABOOT_GENERATED}/finish_archives.cmake)
configure_file(cmake/finish_archives.cmake.in ${KESTRABOOT_GENERATED}/finish_archives.cmake @ONLY)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
