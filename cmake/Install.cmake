# SPDX-License-Identifier: MIT
# cmake --install: headers under include/quillon, the libraries, a CMake config package
# (find_package(Quillon) gives Quillon::quillon, which brings Quillon::guardscalars) and quillon.pc.
include(CMakePackageConfigHelpers)

install(TARGETS guardscalars quillon_region quillon quillon_trig quillon_batch quillon_exactness EXPORT QuillonTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Under Emscripten the region layer is a static library, and the pixman code it links goes with it.
if(TARGET quillon_pixman)
  install(TARGETS quillon_pixman EXPORT QuillonTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY include/quillon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# quillon-batch.pc, which quillon.pc requires: the static library of the batch kernels.
file(RELATIVE_PATH QUILLON_BATCH_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
configure_file(cmake/quillon-batch.pc.in ${PROJECT_BINARY_DIR}/quillon-batch.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillon-batch.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(QUILLON_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
install(EXPORT QuillonTargets NAMESPACE Quillon:: DESTINATION ${QUILLON_CMAKE_DIR})
configure_package_config_file(cmake/QuillonConfig.cmake.in ${PROJECT_BINARY_DIR}/QuillonConfig.cmake
  INSTALL_DESTINATION ${QUILLON_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillonConfig.cmake ${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  DESTINATION ${QUILLON_CMAKE_DIR})

# The .pc file finds its prefix from its own place, so the installed tree can be moved.
file(RELATIVE_PATH QUILLON_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
# The same exactness flags as the CMake target Quillon::exactness.
list(JOIN QUILLON_EXACTNESS_FLAGS " " QUILLON_PC_EXACTNESS_FLAGS)
configure_file(cmake/quillon.pc.in ${PROJECT_BINARY_DIR}/quillon.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/quillon)

# cpack -G DEB: quillon_<version>_<arch>.deb with the libraries, headers, CMake and pkg-config
# files, the tool with its manual page and completion, and the license; installed under /usr.
set(CPACK_PACKAGE_NAME quillon)
set(CPACK_PACKAGE_VENDOR "The Quillon developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Quillon developers")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1, libpixman-1-0")
include(CPack)
