# Tarnsysm: sources of the tangents subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS tangents/tangents.h)
list(APPEND TARNSYSM_SOURCES
  tangents/tangent_lines.cpp)
