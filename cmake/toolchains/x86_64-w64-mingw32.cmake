# Tarnsysm: cross-compiles the 64-bit Windows DLL with Debian's MinGW-w64 (posix threads); its
# tests run under wine64 where 32-bit wine cannot be installed.
#   cmake -S . -B build-win64 -G Ninja --toolchain cmake/toolchains/x86_64-w64-mingw32.cmake
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(TARNSYSM_MINGW_TRIPLET x86_64-w64-mingw32)
set(TARNSYSM_MINGW_ARCH_FLAGS "")
set(TARNSYSM_MINGW_WINE wine64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
