# Tarnsysm: sources of the intersections.
list(APPEND TARNSYSM_SOURCES
  intersect/curves.cpp
  intersect/line_clips.cpp)
list(APPEND TARNSYSM_PUBLIC_HEADERS intersect/intersect.h)
