# Tarnsysm: Debian packages made by `cpack -G DEB` in the build folder, one per install component:
# libtarnsysm0 (the shared library), libtarnsysm-dev (headers, CMake package, pkg-config file) and
# tarnsysm (the command-line tool, when it is built). dpkg-shlibdeps fills in the run-time
# dependencies, dxflib's included.

set(CPACK_PACKAGE_NAME tarnsysm)
set(CPACK_PACKAGE_VENDOR "Tarnsysm developers")
set(CPACK_PACKAGE_CONTACT "Tarnsysm developers <tarnsysm@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Planar computational geometry for 2D drafting")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The library package declares its shlibs and runs ldconfig when installed or removed.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# dpkg-shlibdeps looks for the tool's own library in the build tree, not on the system.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtarnsysm${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
  "Planar computational geometry for 2D drafting (shared library)\n Polyline offset with line and arc segments, circle and arc constructions, intersections,\n nearest points, ellipse measures, rectangle clipping, dimension and text helpers.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtarnsysm-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
  "Planar computational geometry for 2D drafting (development files)\n Headers, the CMake package (find_package(Tarnsysm)) and the pkg-config file.")
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME tarnsysm)
set(CPACK_DEBIAN_TOOL_DESCRIPTION
  "Offsets the polylines of DXF drawings\n The tarnsysm command-line tool, built on the Tarnsysm library and dxflib.")

# The exact version of the library goes with the development files and the tool.
set(runtime_depends "libtarnsysm${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_depends}")
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${runtime_depends}")

set(CPACK_COMPONENTS_ALL runtime development)
if(TARNSYSM_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

include(CPack)
