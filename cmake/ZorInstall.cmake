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
# Every public header; the Fortran BLAS names' one only with the build that exports them.
file(GLOB _zor_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/zor/*.h)
if(NOT ZOR_FORTRAN_BLAS_NAMES)
    list(FILTER _zor_headers EXCLUDE REGEX "/zor_blas\\.h$")
endif()
install(FILES ${_zor_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zor)

set(_zor_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zor)
install(EXPORT zorTargets NAMESPACE zor:: DESTINATION ${_zor_package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zorConfig.cmake.in
    ${PROJECT_BINARY_DIR}/zorConfig.cmake INSTALL_DESTINATION ${_zor_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zorConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zorConfig.cmake ${PROJECT_BINARY_DIR}/zorConfigVersion.cmake
    DESTINATION ${_zor_package_dir})

# zor.pc lies in <libdir>/pkgconfig, which may be more than one folder deep (lib/x86_64-linux-gnu
# under /usr on Debian): the way up to the prefix is counted from it. Folders given as absolute
# paths stay absolute.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(ZOR_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
    set(ZOR_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(ZOR_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
    file(RELATIVE_PATH _zor_up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "/$" "" _zor_up "${_zor_up}")
    set(ZOR_PC_PREFIX "\${pcfiledir}/${_zor_up}")
    set(ZOR_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(ZOR_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/zor.pc.in ${PROJECT_BINARY_DIR}/zor.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zor.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
