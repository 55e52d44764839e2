# What `cmake --install` puts into the prefix: the library (libzor.so.1 with its links; on Windows
# zor.dll in bin/ and the import library libzor.dll.a in lib/), the public headers, the pkg-config
# file zor.pc and the CMake package (find_package(zor) -> zor::zor). Every path inside the package
# and the pkg-config file is relative to the file itself, so the installed tree can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS zor EXPORT zorTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
set(_zor_headers zor.h zor_cblas.h zor_config.h zor_lapack.h zor_memory.h)
if(ZOR_FORTRAN_BLAS_NAMES)
    list(APPEND _zor_headers zor_blas.h)
endif()
list(TRANSFORM _zor_headers PREPEND ${PROJECT_SOURCE_DIR}/include/zor/)
install(FILES ${_zor_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zor)

set(_zor_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zor)
install(EXPORT zorTargets NAMESPACE zor:: DESTINATION ${_zor_package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zorConfig.cmake.in
    ${PROJECT_BINARY_DIR}/zorConfig.cmake INSTALL_DESTINATION ${_zor_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zorConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zorConfig.cmake ${PROJECT_BINARY_DIR}/zorConfigVersion.cmake
    DESTINATION ${_zor_package_dir})

configure_file(${PROJECT_SOURCE_DIR}/cmake/zor.pc.in ${PROJECT_BINARY_DIR}/zor.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zor.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
