# What `cmake --install` lays out: bin/ to run, include/ and lib/ to build a host against.
include(CMakePackageConfigHelpers)

install(TARGETS kestraboot EXPORT kestrabootTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS kestraboot_boot RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${KESTRABOOT_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/kestraboot DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kestraboot)
install(EXPORT kestrabootTargets NAMESPACE kestraboot:: DESTINATION ${package_folder})
configure_package_config_file(cmake/kestrabootConfig.cmake.in ${PROJECT_BINARY_DIR}/kestrabootConfig.cmake
    INSTALL_DESTINATION ${package_folder})
# Strings and vectors cross the boundary: only a compatible library will do.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kestrabootConfig.cmake ${PROJECT_BINARY_DIR}/kestrabootConfigVersion.cmake
    DESTINATION ${package_folder})
