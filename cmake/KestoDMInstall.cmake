# Installs the library, its headers, the command-line tool and a CMake package,
# so that an outside project can say find_package(KestoDM CONFIG REQUIRED).
include(CMakePackageConfigHelpers)

set(KESTODM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KestoDM)

install(TARGETS KestoDM EXPORT KestoDMTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/KestoDM
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
if(TARGET kestodm)
  install(TARGETS kestodm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT KestoDMTargets
  FILE KestoDMTargets.cmake
  NAMESPACE KestoDM::
  DESTINATION ${KESTODM_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestoDMConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KestoDMConfig.cmake
  INSTALL_DESTINATION ${KESTODM_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestoDMConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/KestoDMConfig.cmake
  ${PROJECT_BINARY_DIR}/KestoDMConfigVersion.cmake
  DESTINATION ${KESTODM_CMAKE_DIR})
