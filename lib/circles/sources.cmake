# Tarnsysm: sources of the circles subsystem.
list(APPEND TARNSYSM_PUBLIC_HEADERS circles/circles.h)
list(APPEND TARNSYSM_SOURCES)
