# Tarnsysm: sources of the polyline offset.
list(APPEND TARNSYSM_PUBLIC_HEADERS offset/offset.h)
list(APPEND TARNSYSM_SOURCES
  offset/measures.cpp
  offset/joins.cpp)
list(APPEND TARNSYSM_SOURCES
  offset/distance.cpp
  offset/driver.cpp
  offset/offset_check.cpp
  offset/segment_index.cpp
  offset/trim.cpp
  offset/trim_segments.cpp)
# The round-corner offset: raw offset, clearing, slicing, stitching.
list(APPEND TARNSYSM_SOURCES
  offset/round_raw.cpp
  offset/round_clear.cpp
  offset/round_slice.cpp
  offset/round_stitch.cpp)
