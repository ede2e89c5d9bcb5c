# Tarnsysm: sources of the text subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS text/text.h)
list(APPEND TARNSYSM_SOURCES
  text/cstring.cpp
  text/distance_text.cpp
  text/match.cpp)
