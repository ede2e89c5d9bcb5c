# Tarnsysm: sources of the arc constructions.
list(APPEND TARNSYSM_SOURCES
  arcs/bulge.cpp
  arcs/drafting_arcs.cpp
  arcs/segments.cpp
  arcs/vertex_checks.cpp)
list(APPEND TARNSYSM_PUBLIC_HEADERS arcs/arcs.h)
