# Tarnsysm: sources of the intersections.
list(APPEND TARNSYSM_SOURCES
  intersect/curves.cpp)
list(APPEND TARNSYSM_PUBLIC_HEADERS intersect/intersect.h)
