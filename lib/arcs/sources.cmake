# Tarnsysm: sources of the arc constructions.
list(APPEND TARNSYSM_SOURCES
  arcs/bulge.cpp)
list(APPEND TARNSYSM_PUBLIC_HEADERS arcs/arcs.h)
