# Tarnsysm: cross-compiles the 32-bit x86 Windows DLL with Debian's MinGW-w64 (posix threads).
#   cmake -S . -B build-win32 -G Ninja --toolchain cmake/toolchains/i686-w64-mingw32.cmake
# The x87 unit's 80-bit intermediates would move results across tolerance tests, so arithmetic
# runs on SSE2 in doubles, as on x86-64; the C++ runtime is linked in, so the DLL needs nothing
# beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(TARNSYSM_MINGW_TRIPLET i686-w64-mingw32)
set(TARNSYSM_MINGW_ARCH_FLAGS "-msse2 -mfpmath=sse")
set(TARNSYSM_MINGW_WINE wine)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
