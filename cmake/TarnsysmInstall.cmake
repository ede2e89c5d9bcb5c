# Tarnsysm: installation of the library, its headers, a CMake package and a pkg-config file.
# Consumers: find_package(Tarnsysm CONFIG REQUIRED) and target_link_libraries(app Tarnsysm::Tarnsysm).

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TARNSYSM_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/Tarnsysm")
set(TARNSYSM_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/tarnsysm")

# Components: `runtime` is the shared library alone, `development` everything a consumer builds
# against (headers, the link-time name, the CMake package, the pkg-config file).
install(TARGETS Tarnsysm
  EXPORT TarnsysmTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  INCLUDES DESTINATION ${TARNSYSM_INSTALL_INCLUDEDIR})

# The public headers keep their folder layout so that the umbrella's relative includes resolve.
foreach(header IN LISTS TARNSYSM_PUBLIC_HEADERS)
  get_filename_component(dir "${header}" DIRECTORY)
  install(FILES "${PROJECT_SOURCE_DIR}/lib/${header}"
    DESTINATION "${TARNSYSM_INSTALL_INCLUDEDIR}/${dir}" COMPONENT development)
endforeach()

install(EXPORT TarnsysmTargets
  NAMESPACE Tarnsysm::
  DESTINATION ${TARNSYSM_INSTALL_CMAKEDIR}
  COMPONENT development)

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/TarnsysmConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/TarnsysmConfig.cmake"
  INSTALL_DESTINATION ${TARNSYSM_INSTALL_CMAKEDIR})
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/TarnsysmConfigVersion.cmake"
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/TarnsysmConfig.cmake"
  "${PROJECT_BINARY_DIR}/TarnsysmConfigVersion.cmake"
  DESTINATION ${TARNSYSM_INSTALL_CMAKEDIR}
  COMPONENT development)

# The pkg-config file finds its prefix relative to itself, so `cmake --install --prefix` works.
file(RELATIVE_PATH TARNSYSM_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file("${PROJECT_SOURCE_DIR}/cmake/tarnsysm.pc.in"
  "${PROJECT_BINARY_DIR}/tarnsysm.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tarnsysm.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
  COMPONENT development)
