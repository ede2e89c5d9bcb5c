# Tarnsysm: sources of the circles subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS circles/circles.h)
list(APPEND TARNSYSM_SOURCES
  circles/machinery.cpp
  circles/through_points.cpp
  circles/perpendicular.cpp
  circles/tangent_circles.cpp
  circles/fitted.cpp)
