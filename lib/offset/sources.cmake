# Tarnsysm: sources of the polyline offset.
list(APPEND TARNSYSM_PUBLIC_HEADERS offset/offset.h)
