# Cross-builds for 64-bit Windows with Debian's mingw-w64 (posix threads). Without Qt the programs
# link the C++ runtime, libgcc and winpthread statically, so they run under Wine without copying
# DLLs; the Qt build (qt-windows.cmake) turns that off and ships the run-time DLLs instead.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KESTRIN_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KESTRIN_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KESTRIN_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${KESTRIN_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KESTRIN_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(NOT DEFINED KESTRIN_MINGW_STATIC_RUNTIME OR KESTRIN_MINGW_STATIC_RUNTIME)
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
endif()
