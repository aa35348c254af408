# What `cmake --install` gives: the library, the headers, tvsh, the CMake package Torvelan (target Torvelan::torvelan)
# and torvelan.pc.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TORVELAN_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Torvelan)

install(TARGETS torvelan EXPORT TorvelanTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/torvelan DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT TorvelanTargets NAMESPACE Torvelan:: DESTINATION ${TORVELAN_PACKAGE_DIR})

if(TARGET tvsh)
  set_target_properties(tvsh PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS tvsh RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TorvelanConfig.cmake.in
  ${CMAKE_BINARY_DIR}/TorvelanConfig.cmake INSTALL_DESTINATION ${TORVELAN_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TorvelanConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TorvelanConfig.cmake ${CMAKE_BINARY_DIR}/TorvelanConfigVersion.cmake
  DESTINATION ${TORVELAN_PACKAGE_DIR})

# The prefix is told by the place of the file, so that the tree can be moved.
file(RELATIVE_PATH TORVELAN_PC_UP "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" TORVELAN_PC_UP "${TORVELAN_PC_UP}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/torvelan.pc.in ${CMAKE_BINARY_DIR}/torvelan.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/torvelan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
