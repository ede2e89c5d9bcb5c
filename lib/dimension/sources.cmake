# Tarnsysm: sources of the dimension subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS dimension/dimension.h)
list(APPEND TARNSYSM_SOURCES dimension/dimension.cpp)
