# Tarnsysm: sources of the ellipse subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS ellipse/ellipse.h)
list(APPEND TARNSYSM_SOURCES
  ellipse/matrix.cpp
  ellipse/frames.cpp
  ellipse/intersections.cpp
  ellipse/nearest.cpp
  ellipse/measures.cpp
  ellipse/arc_edits.cpp
  ellipse/fillet.cpp)
