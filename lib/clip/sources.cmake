# Tarnsysm: sources of the clip subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS clip/clip.h)
list(APPEND TARNSYSM_SOURCES clip/clip.cpp)
