# Tarnsysm: sources of the polyline offset.
list(APPEND TARNSYSM_PUBLIC_HEADERS offset/offset.h)
list(APPEND TARNSYSM_SOURCES
  offset/measures.cpp
  offset/joins.cpp)
list(APPEND TARNSYSM_SOURCES
  offset/driver.cpp
  offset/segment_index.cpp
  offset/trim.cpp)
# The round-corner offset: raw offset, slicing, stitching.
list(APPEND TARNSYSM_SOURCES
  offset/round_raw.cpp
  offset/round_slice.cpp
  offset/round_stitch.cpp)
