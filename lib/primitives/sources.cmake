# Tarnsysm: sources of the geometric primitives.
list(APPEND TARNSYSM_SOURCES
  primitives/angles.cpp
  primitives/elementary.cpp
  primitives/points.cpp
  primitives/queries.cpp
  primitives/solvers.cpp)
list(APPEND TARNSYSM_PUBLIC_HEADERS primitives/primitives.h)
